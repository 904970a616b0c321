"use strict";
(() => {
  const data = JSON.parse(document.getElementById("data").textContent);
  const picture = d3.select("#picture");
  const svg = picture.select("svg");
  const things = data.things.map((thing, number) => Object.assign(
    thing, {number, group: svg.select("#thing-" + number), search: searchText(thing), facts: thing.facts,
            known: Object.values(thing.facts).join(" ").toLowerCase()}));
  const lines = data.lines.map(([from, to], number) => ({from, to, group: svg.select("#line-" + number)}));
  const rows = d3.selectAll("tbody tr").nodes().map(row => {
    const cells = [...row.cells].map(cell => cell.textContent);
    return {row, cells, unit: cells[0] + " " + cells[1], thing: Number(row.dataset.thing),
            search: cells.join(" ").toLowerCase()};
  });

  function searchText(thing) {
    const texts = [thing.name, thing.text, thing.state, ...thing.reasons, ...thing.members.flat()];
    return texts.join(" ").toLowerCase();
  }

  // ---- Moving and zooming ----

  svg.selectAll("title").remove();
  svg.selectAll(".node a, .cluster a").attr("xlink:title", null);
  // Nobody hits a line that is a pixel wide.
  svg.selectAll(".edge").each(function () {
    const line = this.querySelector("path");
    const near = line.parentNode.appendChild(line.cloneNode());
    near.setAttribute("class", "near");
  });
  svg.select(".graph > polygon").remove(); // the picture's own paper is no thing of the page's
  const {zoom, keys, scale, scaleOf, allow, showBox, move, reveal} = stage(picture);
  keys.Escape = () => { close(); show(null); };
  window.addEventListener("beforeprint", () => close());

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

  // ---- A box that many share opens ----

  let opened = null;

  function close() {
    svg.select(".opened").remove();
    if (opened !== null) {
      opened.group.attr("aria-expanded", "false");
      opened = null;
    }
  }

  /** Lays those that share the box out beside it. */
  function toggle(thing) {
    const again = opened === thing;
    close();
    if (again || thing.members.length === 0) {
      return;
    }
    opened = thing;
    thing.group.attr("aria-expanded", "true");
    const most = 96;
    const members = thing.members.slice(0, most);
    if (thing.members.length > most) {
      members.push([`${thing.members.length - most} more`, "in the table below"]);
    }
    const across = Math.max(1, Math.ceil(members.length / 12));
    const [wide, high] = [210, 40];
    const box = thing.group.node().getBBox();
    const graph = d3.select(thing.group.node().parentNode);
    const below = Math.ceil(members.length / across);
    const group = graph.append("g").attr("class", "opened").attr(
      "transform", `translate(${box.x + box.width + 14},${box.y + box.height / 2 - below * high / 2})`)
      .on("click", close);
    group.append("rect").attr("class", "paper").attr("x", -6).attr("y", -6).attr("rx", 6)
      .attr("width", across * wide + 6).attr("height", below * high + 6);
    const each = group.selectAll("g").data(members).enter().append("g").attr(
      "transform", (member, i) => `translate(${i % across * wide},${Math.floor(i / across) * high})`);
    each.append("rect").attr("width", wide - 6).attr("height", high - 6).attr("rx", 4);
    each.append("text").attr("class", "name").attr("x", 8).attr("y", 14).text(([name]) => name);
    each.append("text").attr("x", 8).attr("y", 28)
      .text(([, text]) => text.length > 34 ? text.slice(0, 33) + "…" : text);
    each.append("title").text(([name, text]) => name + " " + text);
    picture.style("height", Math.max(svg.node().getBoundingClientRect().height,
                                     Math.min(below * high + 60, window.innerHeight * 0.75)) + "px");
    allow();
    const both = {x: box.x, y: box.y, width: across * wide + box.width + 30,
                  height: Math.max(box.height, below * high)};
    if (scaleOf(both) < scale()) {
      svg.call(zoom.scaleTo, scaleOf(both));
    }
    reveal(group.node());
  }

  // ---- From thing to thing ----

  const height = thing => { const box = thing.group.node().getBBox(); return box.y + box.height / 2; };
  things.forEach(thing => { thing.height = height(thing); });
  const columns = [...new Set(things.map(thing => thing.column))].sort((a, b) => a - b).map(
    column => things.filter(thing => thing.column === column).sort((a, b) => a.height - b.height));

  /** The one above or below; to either side the nearest that a line leads to, or the nearest at all. */
  function neighbour(thing, key) {
    const place = columns.findIndex(column => column.includes(thing));
    const column = columns[place];
    if (key === "ArrowUp" || key === "ArrowDown") {
      return column[column.indexOf(thing) + (key === "ArrowUp" ? -1 : 1)];
    }
    const ahead = key === "ArrowRight";
    const joined = lines.filter(line => (ahead ? line.from : line.to) === thing.number)
      .map(line => things[ahead ? line.to : line.from]);
    const nearest = choice => [...choice].sort(
      (a, b) => Math.abs(a.height - thing.height) - Math.abs(b.height - thing.height))[0];
    return nearest(joined.length > 0 ? joined : columns[place + (ahead ? 1 : -1)] || []);
  }

  /** The picture is one stop of the Tab key: the thing that was last reached. */
  function stopAt(thing) {
    things.forEach(other => other.group.attr("tabindex", other === thing ? 0 : -1));
  }

  picture.on("keydown", () => {
    const {key, ctrlKey, metaKey, altKey, shiftKey} = d3.event;
    const thing = things.find(each => each.group.node() === document.activeElement);
    if (ctrlKey || metaKey || altKey) {
      return;
    }
    const ways = {ArrowLeft: [60, 0], ArrowRight: [-60, 0], ArrowUp: [0, 60], ArrowDown: [0, -60]};
    if (ways[key] && (shiftKey || !thing)) {
      move(...ways[key]);
    } else if (ways[key]) {
      const next = neighbour(thing, key);
      if (next) {
        next.group.node().focus();
      }
    } else if ((key === "Enter" || key === " ") && thing) {
      toggle(thing);
    } else if (keys[key]) {
      keys[key]();
    } else {
      return;
    }
    d3.event.preventDefault();
  });

  things.forEach(thing => {
    const shared = thing.members.length > 0;
    thing.group.attr("role", "button").attr("aria-expanded", shared ? "false" : null)
      .attr("aria-label", [thing.name, ...thing.reasons,
                           ...(shared ? [`${thing.members.length} share it`] : [])].join(", "))
      .on("mouseenter", () => show(thing)).on("mouseleave", () => show(kept)).on("click", () => toggle(thing))
      .on("focus", () => { kept = thing; stopAt(thing); show(thing); reveal(thing.group.node()); })
      .on("blur", () => { kept = null; show(null); });
  });
  stopAt(things[0]);
  d3.selectAll("#troubles a").on("click", function () {
    d3.event.preventDefault();
    document.querySelector(this.getAttribute("href")).focus();
  });

  // ---- The filter ----

  /** World-wide names are written with colons and without. */
  const plain = word => /^([0-9a-f]{2}:)+[0-9a-f]{0,2}$/.test(word) ? word.replace(/:/g, "") : word;

  function filter() {
    const asked = document.getElementById("filter").value.toLowerCase().trim();
    const words = asked.replace(/^\?/, "").split(/\s+/).filter(word => word !== "").map(plain);
    const some = words.length > 0;
    const matches = text => words.every(word => text.includes(word));
    const found = things.map(thing => matches(thing.search + (asked.startsWith("?") ? " " + thing.known : "")));
    let shown = 0;
    rows.forEach(({row, thing, search}) => {
      row.hidden = !matches(search);
      if (!row.hidden) {
        found[thing] = true; // a box that many share does not name them all
        shown++;
      }
    });
    const hits = things.filter(thing => found[thing.number]);
    things.forEach(thing => thing.group.classed("dim", !found[thing.number])
      .classed("hit", some && found[thing.number]));
    lines.forEach(line => line.group.classed("dim", !found[line.from] || !found[line.to]));
    if (some && hits.length > 0) {
      reach(hits);
    }
    document.getElementById("matches").textContent = !some ? "" : hits.length + shown === 0 ? "nothing found"
      : `${hits.length} of ${things.length} things, ${shown} of ${rows.length} paths`;
  }

  /** Brings all of them into the frame, no larger than before. */
  function reach(hits) {
    const graph = svg.select(".graph").node();
    const shift = graph.transform.baseVal.consolidate().matrix;
    const boxes = hits.map(thing => thing.group.node().getBBox());
    const x = Math.min(...boxes.map(box => box.x));
    const y = Math.min(...boxes.map(box => box.y));
    const box = {x: x + shift.e, y: y + shift.f, width: Math.max(...boxes.map(each => each.x + each.width)) - x,
                 height: Math.max(...boxes.map(each => each.y + each.height)) - y};
    const least = zoom.scaleExtent()[0];
    showBox(box, Math.max(least, Math.min(Math.max(1, scale()), scaleOf(box))));
  }

  d3.select("#filter").on("input", filter);
  d3.select("#tools").on("submit", () => d3.event.preventDefault());
  filter();

  // ---- The table ----

  const heads = d3.selectAll("thead th");
  const size = text => {
    const [, number, prefix] = /^([\d.]+) (?:([KMGTPE])i)?B$/.exec(text) || [];
    return number === undefined ? null : number * 1024 ** (prefix ? "KMGTPE".indexOf(prefix) + 1 : 0);
  };
  const compare = (one, other) => size(one) !== null && size(other) !== null ? size(one) - size(other)
    : one.localeCompare(other, "en", {numeric: true});
  let shownRows = rows;

  /** The rows of a unit stay together, and only the first names it. */
  function lay(order) {
    shownRows = order;
    const body = document.querySelector("tbody");
    order.forEach(({row, unit}, i) => {
      row.classList.toggle("same", i > 0 && order[i - 1].unit === unit);
      body.append(row);
    });
  }

  heads.each(function (none, column) {
    const head = d3.select(this);
    // No button element: browsers do not repeat a heading that holds one on each sheet of paper.
    head.select("span").on("keydown", () => {
      if (d3.event.key === "Enter" || d3.event.key === " ") {
        d3.event.preventDefault();
        d3.event.target.dispatchEvent(new MouseEvent("click"));
      }
    }).on("click", () => {
      const falling = head.attr("aria-sort") === "ascending";
      const sign = falling ? -1 : 1;
      heads.attr("aria-sort", null);
      head.attr("aria-sort", falling ? "descending" : "ascending");
      const units = d3.nest().key(row => row.unit).sortValues(
        (one, other) => sign * compare(one.cells[column], other.cells[column]))
        .entries(rows).map(entry => entry.values);
      units.sort(([one], [other]) => sign * compare(one.cells[column], other.cells[column]));
      lay(units.flat());
    });
  });
  lay(rows);

  /** What a spreadsheet would compute is text to it, behind an apostrophe. */
  const cell = text => {
    const safe = /^[=+\-@\t\r]/.test(text) && isNaN(text) ? "'" + text : text;
    return /[",\r\n]/.test(safe) ? '"' + safe.replace(/"/g, '""') + '"' : safe;
  };
  document.getElementById("copy").addEventListener("click", async () => {
    const names = heads.nodes().map(head => head.textContent);
    const text = [names, ...shownRows.filter(({row}) => !row.hidden).map(row => row.cells)]
      .map(cells => cells.map(cell).join(",") + "\r\n").join("");
    let done = "copied";
    try {
      await navigator.clipboard.writeText(text);
    } catch (refused) { // where the page is read from a file, some browsers keep the clipboard from it
      const field = document.body.appendChild(document.createElement("textarea"));
      field.value = text;
      field.select();
      done = document.execCommand("copy") ? done : "the browser keeps the clipboard to itself";
      field.remove();
    }
    document.getElementById("copied").textContent = done;
  });
})();
