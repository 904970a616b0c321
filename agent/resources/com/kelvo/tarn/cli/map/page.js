"use strict";
(() => {
  const data = JSON.parse(document.getElementById("data").textContent);
  const picture = d3.select("#picture");
  const svg = picture.select("svg");
  const {width: fullWidth, height: fullHeight} = svg.node().viewBox.baseVal;
  const things = data.things.map((thing, number) => Object.assign(
    thing, {number, group: svg.select("#thing-" + number), search: searchText(thing)}));
  const lines = data.lines.map(([from, to], number) => ({from, to, group: svg.select("#line-" + number)}));
  const rows = d3.selectAll("tbody tr").nodes().map(row => (
    {row, thing: Number(row.dataset.thing), search: [...row.cells].map(cell => cell.textContent).join(" ").toLowerCase()}));

  function searchText(thing) {
    const texts = [thing.name, thing.text, thing.state, ...thing.reasons, ...Object.values(thing.facts)];
    return texts.join(" ").toLowerCase();
  }

  // ---- Moving and zooming ----

  picture.classed("live", true);
  svg.attr("viewBox", null).attr("width", null).attr("height", null);
  svg.selectAll("title").remove();
  svg.selectAll(".node a, .cluster a").attr("xlink:title", null);
  // Nobody hits a line that is a pixel wide.
  svg.selectAll(".edge").each(function () {
    const line = this.querySelector("path");
    const near = line.parentNode.appendChild(line.cloneNode());
    near.setAttribute("class", "near");
  });
  const layer = svg.append("g");
  layer.node().append(svg.select(".graph").node());
  // The picture's own paper is no thing of the page's.
  layer.select(".graph > polygon").remove();
  const zoom = d3.zoom().scaleExtent([0.05, 8]).on("zoom", () => layer.attr("transform", d3.event.transform));
  svg.call(zoom).on("dblclick.zoom", null);

  const hostHeight = middle(things[0]); // all else lies to the right of the host, around its height
  const margin = 12;
  const roomiest = 1.3; // a scale beyond which nothing reads better

  function middle(thing) {
    const box = thing.group.node().getBBox();
    return box.y + box.height / 2 + fullHeight;
  }

  /** Shows all, no smaller than the scale. */
  function fit(smallest) {
    const {width, height} = svg.node().getBoundingClientRect();
    const spare = scale => [width - fullWidth * scale, height - fullHeight * scale];
    const whole = Math.min((width - 2 * margin) / fullWidth, (height - 2 * margin) / fullHeight);
    const scale = Math.max(smallest, Math.min(roomiest, whole));
    const [right, down] = spare(scale);
    svg.call(zoom.transform, d3.zoomIdentity.translate(
      Math.max(margin, right / 2), down >= 0 ? down / 2 : height / 2 - hostHeight * scale).scale(scale));
  }

  /** Shows all; where that would be too small to read, what there is room for. The frame is no higher than it takes. */
  function begin() {
    const legible = 0.8;
    const width = svg.node().getBoundingClientRect().width - 2 * margin;
    const height = fullHeight * Math.min(roomiest, Math.max(legible, width / fullWidth)) + 2 * margin;
    picture.style("height", Math.max(240, Math.min(height, window.innerHeight * 0.75)) + "px");
    fit(legible);
  }

  const keys = {
    "+": () => svg.call(zoom.scaleBy, 1.25), "=": () => svg.call(zoom.scaleBy, 1.25),
    "-": () => svg.call(zoom.scaleBy, 0.8), "0": () => fit(0),
    "ArrowLeft": () => move(60, 0), "ArrowRight": () => move(-60, 0),
    "ArrowUp": () => move(0, 60), "ArrowDown": () => move(0, -60), "Escape": () => show(null)
  };
  const buttons = {in: keys["+"], out: keys["-"], fit: keys["0"]};

  /** By so many pixels of the screen. */
  function move(right, down) {
    const scale = d3.zoomTransform(svg.node()).k;
    svg.call(zoom.translateBy, right / scale, down / scale);
  }

  picture.on("keydown", () => {
    if (keys[d3.event.key] && !d3.event.ctrlKey && !d3.event.metaKey && !d3.event.altKey) {
      d3.event.preventDefault();
      keys[d3.event.key]();
    }
  });
  d3.selectAll("[data-zoom]").on("click", function () { buttons[this.dataset.zoom](); });
  let width = window.innerWidth;
  window.addEventListener("resize", () => { // a height changes with the keyboard of a telephone
    if (window.innerWidth !== width) {
      width = window.innerWidth;
      begin();
    }
  });
  begin();

  // ---- A thing's facts, and the ways through it ----

  let kept = null; // the thing that has the focus, shown while nothing is pointed at

  function show(thing) {
    const ways = thing === null ? [] : data.ways.filter(way => way.includes(thing.number));
    const onWay = new Set(ways.flat());
    const steps = new Set(ways.flatMap(way => way.slice(1).map((end, i) => way[i] + " " + end)));
    things.forEach(other => other.group.classed("off", thing !== null && !onWay.has(other.number)));
    lines.forEach(line => {
      const on = steps.has(line.from + " " + line.to);
      line.group.classed("off", thing !== null && !on).classed("on", on);
    });
    if (thing !== null) {
      const facts = d3.select("#facts").attr("class", thing.state).html(null).property("scrollTop", 0);
      facts.append("h2").text(thing.name);
      thing.reasons.forEach(reason => facts.append("p").attr("class", "reason").text(reason));
      const list = facts.append("dl");
      Object.entries(thing.facts).forEach(([label, value]) => {
        list.append("dt").text(label);
        list.append("dd").text(value);
      });
    }
  }

  /** Moves the picture until the thing is within it. */
  function reveal(thing) {
    const frame = picture.node().getBoundingClientRect();
    const box = thing.group.node().getBoundingClientRect();
    const past = (low, high, from, to) => low < from ? from - low : high > to ? Math.max(to - high, from - low) : 0;
    const right = past(box.left, box.right, frame.left + 12, frame.right - 12);
    const down = past(box.top, box.bottom, frame.top + 12, frame.bottom - 12);
    if (right !== 0 || down !== 0) {
      move(right, down);
    }
  }

  things.forEach(thing => thing.group
    .attr("tabindex", 0).attr("role", "img").attr("aria-label", [thing.name, ...thing.reasons].join(", "))
    .on("mouseenter", () => show(thing)).on("mouseleave", () => show(kept))
    .on("focus", () => { kept = thing; show(thing); reveal(thing); })
    .on("blur", () => { kept = null; show(null); }));
  d3.selectAll("#troubles a").on("click", function () {
    d3.event.preventDefault();
    document.querySelector(this.getAttribute("href")).focus();
  });

  // ---- The filter ----

  function filter() {
    const words = document.getElementById("filter").value.toLowerCase().split(/\s+/).filter(word => word !== "");
    const matches = text => words.every(word => text.includes(word));
    const found = things.map(thing => matches(thing.search));
    let shown = 0;
    rows.forEach(({row, thing, search}) => {
      row.hidden = !matches(search);
      if (!row.hidden) {
        found[thing] = true; // a box that many share does not name them all
        shown++;
      }
    });
    things.forEach((thing, number) => thing.group.classed("dim", !found[number]));
    lines.forEach(line => line.group.classed("dim", !found[line.from] || !found[line.to]));
    if (words.length > 0 && found.includes(true)) {
      reveal(things[found.indexOf(true)]);
    }
    document.getElementById("matches").textContent = words.length === 0 ? ""
      : `${found.filter(match => match).length} of ${things.length} things, ${shown} of ${rows.length} paths`;
  }

  d3.select("#filter").on("input", filter);
  d3.select("#tools").on("submit", () => d3.event.preventDefault());
  filter();
})();
