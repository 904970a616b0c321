"use strict";
/** Has the drawing within a frame moved and zoomed, by mouse, buttons and keys, and printed whole. */
const stage = picture => { // eslint-disable-line no-unused-vars
  const svg = picture.select("svg");
  picture.classed("live", true);
  const wholeBox = svg.attr("viewBox");
  svg.attr("viewBox", null).attr("width", null).attr("height", null);
  const layer = svg.append("g");
  layer.node().append(svg.select(".graph").node());
  const margin = 12;
  const roomiest = 1.3; // a scale beyond which nothing reads better
  // The wheel is the page's, until Ctrl makes it the picture's.
  const zoom = d3.zoom()
    .filter(() => d3.event.type === "wheel" ? d3.event.ctrlKey : !d3.event.ctrlKey && !d3.event.button)
    .on("zoom", () => layer.attr("transform", d3.event.transform));
  svg.call(zoom).on("dblclick.zoom", null);

  const scale = () => d3.zoomTransform(svg.node()).k;

  /** The scale at which all of a box is seen. */
  function scaleOf(box) {
    const {width, height} = svg.node().getBoundingClientRect();
    return Math.min((width - 2 * margin) / box.width, (height - 2 * margin) / box.height);
  }

  /** Nothing is seen from farther away than all. */
  function allow() {
    const least = Math.min(roomiest, scaleOf(layer.node().getBBox()));
    zoom.scaleExtent([least, 8]);
    return least;
  }

  function showBox(box, scale) {
    const {width, height} = svg.node().getBoundingClientRect();
    svg.call(zoom.transform, d3.zoomIdentity.translate(
      width / 2 - (box.x + box.width / 2) * scale, height / 2 - (box.y + box.height / 2) * scale).scale(scale));
  }

  function fit() {
    showBox(layer.node().getBBox(), allow());
  }

  /** Shows all; of what is far higher than wide, the whole width. The frame is no higher than it takes. */
  function begin() {
    const box = layer.node().getBBox();
    const across = Math.min(roomiest, (svg.node().getBoundingClientRect().width - 2 * margin) / box.width);
    picture.style("height", Math.max(200, Math.min(box.height * across + 2 * margin,
                                                   window.innerHeight * 0.75)) + "px");
    fit();
    if (scaleOf(box) < across / 3) {
      showBox(box, across);
    }
  }

  /** By so many pixels of the screen. */
  function move(right, down) {
    svg.call(zoom.translateBy, right / scale(), down / scale());
  }

  /** Moves the picture until the element is within it. */
  function reveal(element) {
    const frame = picture.node().getBoundingClientRect();
    const box = element.getBoundingClientRect();
    const past = (low, high, from, to) => low < from ? from - low : high > to ? Math.max(to - high, from - low) : 0;
    const right = past(box.left, box.right, frame.left + margin, frame.right - margin);
    const down = past(box.top, box.bottom, frame.top + margin, frame.bottom - margin);
    if (right !== 0 || down !== 0) {
      move(right, down);
    }
  }

  const keys = {
    "+": () => svg.call(zoom.scaleBy, 1.25), "=": () => svg.call(zoom.scaleBy, 1.25),
    "-": () => svg.call(zoom.scaleBy, 0.8), "0": fit
  };
  const buttons = {in: keys["+"], out: keys["-"], fit};
  d3.selectAll("[data-zoom]").on("click", function () { buttons[this.dataset.zoom](); });
  let width = window.innerWidth;
  window.addEventListener("resize", () => { // a height changes with the keyboard of a telephone
    if (window.innerWidth !== width) {
      width = window.innerWidth;
      begin();
    }
  });
  begin();

  // Paper shows all, whatever the screen does.
  window.addEventListener("beforeprint", () => {
    document.getElementById("findings").open = true;
    layer.attr("transform", null);
    svg.attr("viewBox", wholeBox);
  });
  window.addEventListener("afterprint", () => {
    svg.attr("viewBox", null);
    layer.attr("transform", d3.zoomTransform(svg.node()));
  });
  return {zoom, keys, scale, scaleOf, allow, showBox, move, reveal};
};
