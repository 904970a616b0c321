"use strict";
(() => {
  const data = JSON.parse(document.getElementById("data").textContent);
  const network = answers(data);
  window.network = network;
  const picture = d3.select("#picture");
  const svg = picture.select("svg");
  const {zoom, keys, scale, scaleOf, allow, showBox, move, reveal} = stage(picture);
  keys.Escape = () => { close(); choose([]); };
  // From far away the names alone are written, large.
  const near = 0.62;
  const widest = 1500;
  const watch = () => svg.classed("afar", scale() < near);
  zoom.on("zoom.names", watch);
  watch();
  window.addEventListener("beforeprint", () => {
    close();
    svg.classed("afar", svg.attr("viewBox").split(" ")[2] > widest);
  });
  window.addEventListener("afterprint", watch);

  const severityOf = new Map(); // of hosts, the worst
  data.findings.forEach(([severity, , , , hosts]) => hosts.forEach(
    host => severityOf.has(host) || severityOf.set(host, severity)));
  const hostNumber = new Map(network.hosts.map((host, number) => [host.name, number]));
  const unitOf = new Map(network.units.map(unit => [unit.name, unit]));

  // ---- Boxes and lines ----

  const boxes = new Map(svg.selectAll(".node, .frame").nodes().map(
    element => [element.id, {id: element.id, element, thing: thingOf(element.id)}]));
  const lines = new Map(svg.selectAll(".line").nodes().map(
    element => [element.dataset.from + " " + element.dataset.to, element]));

  /** What a box stands for. */
  function thingOf(id) {
    const number = Number(id.slice(1));
    switch (id[0]) {
      case "g": return data.groups[number].length === 1
        ? {kind: "host", name: network.hosts[data.groups[number][0]].name} : {kind: "group", name: number};
      case "f": return {kind: "fabric", name: data.fabrics[number]};
      case "s": return network.switches[number].domain === 0
        ? {kind: "fabric", name: data.fabrics[network.switches[number].fabric]}
        : {kind: "switch", name: network.switches[number].name};
      case "a": return {kind: "array", name: data.arrays[number][0]};
      default: return {kind: "port", name: network.arrayPorts[number].wwn};
    }
  }

  const same = (one, other) => one.kind === other.kind && one.name === other.name;
  const count = (number, noun) => `${number.toLocaleString("en")} ${noun}${number === 1 ? "" : "s"}`;
  const label = thing => thing.kind !== "group" ? thing.kind + " " + thing.name
    : count(data.groups[thing.name].length, "host") + ": " + groupNames(thing.name);

  function groupNames(group) {
    const names = data.groups[group].map(host => network.hosts[host].name);
    return names.length > 6 ? [...names.slice(0, 5), "…", names[names.length - 1]].join(", ") : names.join(", ");
  }

  // ---- What is chosen: who reaches it, and what is lost with it ----

  let chosen = [];

  /** Shows the things in the picture and beside it; without any, the picture as it is. */
  function choose(things) {
    chosen = things;
    const on = {boxes: new Set(), lines: new Set()};
    things.map(network.drawn).forEach(drawn => {
      drawn.boxes.forEach(id => on.boxes.add(id));
      drawn.lines.forEach(id => on.lines.add(id));
    });
    const lost = things.length === 0 || things.some(({kind}) => kind === "group") ? null : network.impact(things);
    svg.classed("asked", things.length > 0);
    const losing = boxesOf(lost === null ? [] : lost.lost);
    const keeping = boxesOf(lost === null ? [] : lost.lastPath);
    boxes.forEach(({id, element, thing}) => d3.select(element).classed("on", on.boxes.has(id))
      .classed("chosen", things.some(each => same(each, thing))).classed("loses", losing.has(id))
      .classed("keeps", !losing.has(id) && keeping.has(id)));
    lines.forEach((element, id) => element.classList.toggle("on", on.lines.has(id)));
    markOpened(lost);
    tell(things, lost);
  }

  const boxesOf = lost => new Set(lost.map(({host}) => "g" + network.groupOf[hostNumber.get(host)]));

  /** Adds the thing to those that are chosen, or takes it away; without more, it is the only one. */
  function pick(thing, more) {
    const others = more ? chosen.filter(each => !same(each, thing)) : [];
    choose(more && others.length < chosen.length ? others : [...others, thing]);
  }

  // ---- The words beside the picture ----

  const facts = d3.select("#facts");
  const most = 60; // items of a list that are shown at once

  function tell(things, lost) {
    facts.html(null).property("scrollTop", 0);
    if (things.length === 0) {
      facts.append("p").text("Choose a thing, by a click or by Tab, arrows and Enter, for who reaches it and what is "
        + "lost when it fails; with Ctrl or Shift, several that fail together. A box with a + opens. Ctrl and the wheel "
        + "zoom.");
      return;
    }
    things.forEach(thing => {
      facts.append("h2").text(label(thing));
      factsOf(thing).forEach(text => facts.append("p").text(text));
    });
    data.findings.filter(finding => things.some(thing => concerns(finding, thing))).slice(0, 20)
      .forEach(([severity, , subject, message]) => facts.append("p")
        .attr("class", severity === "critical" ? "lost" : "last").text(subject + ": " + message));
    if (lost !== null) {
      facts.append("h3").text(things.length === 1 ? "If it fails" : "If all of them fail");
      if (lost.lost.length + lost.lastPath.length === 0) {
        facts.append("p").text("No unit is lost, and none is left with one path.");
      }
      tellUnits(lost.lost, "lost", "lost");
      tellUnits(lost.lastPath, "last", "left with one path");
    }
    things.forEach(thing => {
      const {hosts} = network.who(thing);
      facts.append("h3").text((things.length === 1 ? "" : label(thing) + ": ") + (thing.kind === "group" ? "Its hosts"
        : thing.kind === "host" ? "What it reaches" : "Reached by " + count(hosts.length, "host")));
      list(facts, hosts, (item, {host, ports, units, disks}) => fold(
        item, {kind: "host", name: host}, `${count(ports.length, "port")}, ${count(units.length, "unit")}`, inner => {
          links(inner, ports.map(name => ({kind: "port", name})));
          links(inner, units.map(name => ({kind: "unit", name})));
          list(inner, disks, (each, disk) => each.append("small").text(disk));
        }, hosts.length === 1));
    });
  }

  /** By host: the units with where they are mounted. */
  function tellUnits(lost, style, words) {
    const byHost = d3.nest().key(each => each.host).entries(lost);
    if (lost.length === 0) {
      return;
    }
    facts.append("p").attr("class", style)
      .text(`${count(lost.length, "unit")} ${words}, on ${count(byHost.length, "host")}`);
    list(facts, byHost, (item, {key, values}) => {
      const mounts = values.flatMap(each => each.mounts);
      const words = count(values.length, "unit") + (mounts.length ? ": " + mounts.join(", ") : "");
      fold(item, {kind: "host", name: key}, words,
        inner => list(inner, values, (each, {unit, disks, mounts}) => {
          link(each, {kind: "unit", name: unit});
          each.append("small").text(" " + [...mounts, ...disks].join(", "));
        }), false);
    });
  }

  function factsOf({kind, name}) {
    if (kind === "host") {
      const {platform, recordedAt} = network.hosts[hostNumber.get(name)];
      const models = new Set(network.ports.filter(port => port.host === hostNumber.get(name)).map(
        port => `${port.model}, firmware ${port.firmware}, driver ${port.driver}`));
      return [platform, "recorded " + recordedAt, ...models].filter(text => text !== "");
    }
    if (kind === "unit") {
      const {product, size} = unitOf.get(name);
      return [[product, size].filter(text => text !== "").join(", ")];
    }
    if (kind === "port") {
      return [...network.ports.filter(port => port.wwn === name).map(
        port => `of host ${network.hosts[port.host].name}, ${port.state}`
          + (port.at < 0 ? "" : ", at switch " + network.switches[port.at].name)),
              ...network.arrayPorts.filter(port => port.wwn === name).map(
        port => `of array ${data.arrays[port.array][0]}`
          + (port.at < 0 ? "" : ", at switch " + network.switches[port.at].name))];
    }
    return kind === "array" ? [(data.arrays.find(([node]) => node === name) || ["", ""])[1]] : [];
  }

  /** Whether a finding is about a thing, or about a host of it. */
  function concerns([, , subject, , hosts], {kind, name}) {
    return subject === name || kind === "host" && hosts.includes(hostNumber.get(name))
      || kind === "group" && hosts.some(host => network.groupOf[host] === name);
  }

  /** A list of which the first are there, and the others behind a button. */
  function list(parent, items, fill) {
    const ul = parent.append("ul");
    const add = some => some.forEach(each => fill(ul.append("li"), each));
    add(items.slice(0, most));
    if (items.length > most) {
      const more = parent.append("button").attr("type", "button").text(`${items.length - most} more`);
      more.on("click", () => {
        more.remove();
        add(items.slice(most));
      });
    }
  }

  function links(parent, things) {
    list(parent, things, link);
  }

  function link(parent, thing) {
    parent.append("button").attr("type", "button").attr("class", "link").attr("title", thing.kind).text(thing.name)
      .on("click", () => {
        d3.event.preventDefault();
        pick(thing, d3.event.ctrlKey || d3.event.shiftKey);
      });
  }

  /** A thing whose particulars are made when they are unfolded. */
  function fold(parent, thing, words, fill, isOpen) {
    const details = parent.append("details");
    const summary = details.append("summary");
    link(summary, thing);
    summary.append("small").text(" " + words);
    details.on("toggle", () => {
      if (details.select("ul").empty()) {
        fill(details);
      }
    });
    details.property("open", isOpen);
  }

  // ---- A box of several hosts opens ----

  let opened = null;

  function close() {
    svg.select(".opened").remove();
    if (opened !== null) {
      opened.setAttribute("aria-expanded", "false");
      opened = null;
    }
  }

  /** Lays the hosts of a group out beside its box. */
  function open(element) {
    const again = opened === element;
    close();
    if (again) {
      return;
    }
    opened = element;
    element.setAttribute("aria-expanded", "true");
    const all = data.groups[Number(element.id.slice(1))];
    const members = all.slice(0, 240);
    const across = Math.ceil(members.length / 12);
    const below = Math.ceil(members.length / across);
    const [wide, high] = [136, 25];
    const box = element.getBBox();
    const group = d3.select(element.parentNode).append("g").attr("class", "opened").attr(
      "transform", `translate(${box.x + box.width + 12},${box.y + box.height / 2 - below * high / 2})`);
    group.append("rect").attr("class", "paper").attr("x", -6).attr("y", -6).attr("rx", 6)
      .attr("width", across * wide + 7).attr("height", below * high + 8);
    const each = group.selectAll("g").data(members).enter().append("g").attr(
      "transform", (host, i) => `translate(${Math.floor(i / below) * wide},${i % below * high})`)
      .attr("class", host => "member " + (severityOf.get(host) || "")).on("click", host => pick(
        {kind: "host", name: network.hosts[host].name}, d3.event.ctrlKey || d3.event.shiftKey));
    each.append("rect").attr("width", wide - 5).attr("height", high - 4).attr("rx", 4);
    each.append("text").attr("class", "name").attr("x", 7).attr("y", 14.5).text(host => {
      const {name} = network.hosts[host];
      return name.length > 19 ? name.slice(0, 18) + "…" : name;
    });
    allow();
    reveal(group.node());
  }

  function markOpened(lost) {
    const names = part => new Set(lost === null ? [] : lost[part].map(({host}) => hostNumber.get(host)));
    const [losing, keeping] = [names("lost"), names("lastPath")];
    svg.selectAll(".opened .member").classed("loses", host => losing.has(host))
      .classed("keeps", host => !losing.has(host) && keeping.has(host))
      .classed("chosen", host => chosen.some(({kind, name}) => kind === "host" && name === network.hosts[host].name));
  }

  // ---- By mouse and by keys ----

  boxes.forEach(({element, thing}) => {
    const box = d3.select(element).attr("role", "button").attr("tabindex", -1).attr("aria-label", label(thing));
    const act = more => {
      if (thing.kind === "group" && !more) {
        open(element);
      }
      pick(thing, more);
    };
    if (thing.kind === "group") {
      box.attr("aria-expanded", "false");
    }
    box.on("click", () => act(d3.event.ctrlKey || d3.event.shiftKey)).on("focus", () => {
      boxes.forEach(each => each.element.setAttribute("tabindex", each.element === element ? 0 : -1));
      reveal(element);
    }).on("act", () => act(false));
  });
  const firstBox = boxes.values().next().value;
  if (firstBox) {
    firstBox.element.setAttribute("tabindex", 0);
  }

  const centre = element => {
    const box = element.getBBox();
    return [box.x + box.width / 2, box.y + box.height / 2];
  };
  const directions = {ArrowLeft: [-1, 0], ArrowRight: [1, 0], ArrowUp: [0, -1], ArrowDown: [0, 1]};

  /** The nearest box that way; what lies aside counts as farther. */
  function neighbour(element, [right, down]) {
    const [x, y] = centre(element);
    let [best, least] = [null, Infinity];
    boxes.forEach(each => {
      const [otherX, otherY] = centre(each.element);
      const ahead = (otherX - x) * right + (otherY - y) * down;
      const aside = Math.abs((otherX - x) * down) + Math.abs((otherY - y) * right);
      if (ahead > 1 && ahead + 2 * aside < least) {
        [best, least] = [each.element, ahead + 2 * aside];
      }
    });
    return best;
  }

  picture.on("keydown", () => {
    const {key, ctrlKey, metaKey, altKey, shiftKey} = d3.event;
    const box = boxes.get(document.activeElement.id);
    if (ctrlKey || metaKey || altKey) {
      return;
    }
    if (directions[key] && (shiftKey || !box)) {
      move(-60 * directions[key][0], -60 * directions[key][1]);
    } else if (directions[key]) {
      const next = neighbour(box.element, directions[key]);
      if (next) {
        next.focus();
      }
    } else if ((key === "Enter" || key === " ") && box) {
      d3.select(box.element).dispatch("act");
    } else if (keys[key]) {
      keys[key]();
    } else {
      return;
    }
    d3.event.preventDefault();
  });

  // ---- The findings ----

  const troubles = d3.select("#troubles");
  troubles.selectAll("a").on("click", function () {
    d3.event.preventDefault();
    const [, , subject, , hosts] = data.findings[Number(this.dataset.finding)];
    const exact = network.find(subject).filter(thing => String(thing.name) === subject);
    choose(exact.length > 0 ? exact.slice(0, 1)
      : hosts.map(host => ({kind: "host", name: network.hosts[host].name})));
    bring(new Set(hosts.map(host => "g" + network.groupOf[host])));
  });
  const shown = 8;
  if (data.findings.length > shown) {
    troubles.classed("some", true);
    const rest = d3.select("#findings").append("button").attr("type", "button").attr("id", "rest")
      .text(`${data.findings.length - shown} more`).on("click", () => {
        troubles.classed("some", false);
        rest.remove();
      });
  }

  // ---- The search ----

  /** Brings the boxes into the frame, no larger than before. */
  function bring(ids) {
    const found = [...ids].map(id => boxes.get(id)).filter(box => box).map(box => box.element.getBBox());
    if (found.length === 0) {
      return;
    }
    const x = Math.min(...found.map(box => box.x));
    const y = Math.min(...found.map(box => box.y));
    const box = {x, y, width: Math.max(...found.map(each => each.x + each.width)) - x,
                 height: Math.max(...found.map(each => each.y + each.height)) - y};
    showBox(box, Math.min(Math.max(0.8, scale()), scaleOf(box)));
  }

  function search() {
    const text = document.getElementById("filter").value;
    const found = network.find(text);
    const ids = new Set(found.flatMap(thing => thing.ids));
    boxes.forEach(({id, element}) => element.classList.toggle("hit", ids.has(id)));
    document.getElementById("matches").textContent = text.trim() === "" ? ""
      : found.length === 0 ? "nothing found"
      : `${count(found.length, "thing")} in ${ids.size} box${ids.size === 1 ? "" : "es"}`;
    if (text.trim() === "") {
      tell(chosen, chosen.length === 0 ? null : network.impact(chosen));
      return;
    }
    facts.html(null);
    facts.append("h2").text(found.length === 0 ? "Nothing found" : count(found.length, "thing") + " found");
    d3.nest().key(thing => thing.kind).entries(found).forEach(({key, values}) => {
      facts.append("h3").text(`${key} (${values.length})`);
      links(facts, values);
    });
    if (found.length > 0) {
      bring(ids);
    }
  }

  d3.select("#filter").on("input", search).on("focus", () => network.find("-")); // the first time takes a while
  d3.select("#tools").on("submit", () => {
    d3.event.preventDefault();
    const [first] = network.find(document.getElementById("filter").value);
    if (first) {
      choose([first]);
    }
  });
  choose([]);
})();
