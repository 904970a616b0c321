"use strict";
/**
 * Answers questions about a network from the page's data: who reaches a thing and through what, and what is lost when
 * things fail. A thing is {kind, name}, named as san who has it; a group is named by its number.
 */
const answers = data => { // eslint-disable-line no-unused-vars
  const hosts = data.hosts.map(([name, platform, recordedAt]) => ({name, platform, recordedAt}));
  const units = data.units.map(([name, product, size]) => ({name, product, size}));
  const switches = data.switches.map(([fabric, domain]) => ({
    fabric, domain, name: data.fabrics[fabric] + "/" + domain}));
  const arrayPorts = data.arrayPorts.map(([wwn, array, at]) => ({wwn, array, at}));
  const groupOf = new Int32Array(hosts.length);
  data.groups.forEach((members, group) => members.forEach(host => { groupOf[host] = group; }));

  // The ports of hosts; and every path as a row of numbers, those of one host to one unit after each other.
  const ports = [];
  const count = data.hosts.reduce(
    (sum, [, , , , runs]) => sum + eachReach(runs, reach => stepsOf(reach).length / 3), 0);
  const rows = Object.fromEntries(["host", "port", "far", "unit", "disk", "online"].map(
    column => [column, new Int32Array(count)]));
  const reaches = []; // [host, unit, first row, row after the last]
  data.hosts.forEach(([, , , own, runs], host) => {
    const first = ports.length;
    own.forEach(([wwn, at, adapter, model, state]) => {
      const [name, firmware, driver] = data.models[model];
      ports.push({host, wwn, at, adapter, model: name, firmware, driver, state});
    });
    eachReach(runs, reach => {
      const steps = stepsOf(reach);
      const [unit, , ...disks] = reach;
      let row = reaches.length === 0 ? 0 : reaches[reaches.length - 1][3];
      reaches.push([host, unit, row, row + steps.length / 3]);
      for (let i = 0; i < steps.length; i += 3, row++) {
        rows.host[row] = host;
        rows.port[row] = first + steps[i];
        rows.far[row] = steps[i + 1];
        rows.unit[row] = unit;
        rows.disk[row] = disks.length === 1 ? disks[0] : disks[i / 3];
        rows.online[row] = steps[i + 2];
      }
      return 0;
    });
  });
  const mounts = new Map(); // by host and unit
  data.hosts.forEach(([, , , , , mounted], host) => mounted.forEach(([mountPoint, unit]) => {
    const key = host * units.length + unit;
    mounts.set(key, [...(mounts.get(key) || []), mountPoint]);
  }));
  const mountsOf = (host, unit) => mounts.get(host * units.length + unit) || [];

  function stepsOf([, way]) {
    return data.ways[way];
  }

  /** What a number of each reach comes to together. */
  function eachReach(runs, number) {
    let sum = 0;
    for (let i = 0; i < runs.length; i += 2) {
      for (let reach = runs[i]; reach < runs[i] + runs[i + 1]; reach++) {
        sum += number(data.reaches[reach]);
      }
    }
    return sum;
  }

  // World-wide names are numbers here, since they are compared for every path.
  const names = new Map();
  const numberOf = name => names.get(name) || names.set(name, names.size + 1).get(name);
  const portName = Int32Array.from(ports, port => numberOf(port.wwn));
  const farName = Int32Array.from(arrayPorts, port => numberOf(port.wwn));

  const fabricAt = at => at < 0 ? -1 : switches[at].fabric;
  const marks = (list, isOf) => Uint8Array.from(list, (each, number) => isOf(each, number) ? 1 : 0);
  const none = {near: new Uint8Array(ports.length), far: new Uint8Array(arrayPorts.length), unit: -1};
  /** By kind: the ports of hosts, the ports of arrays and the unit that a thing is, or that belong to it. */
  const kinds = {
    port: name => ({near: marks(ports, port => port.wwn === name), far: marks(arrayPorts, port => port.wwn === name)}),
    array: name => ({far: marks(arrayPorts, ({array}) => data.arrays[array][0] === name)}),
    fabric: name => ({near: marks(ports, ({at}) => fabricAt(at) === data.fabrics.indexOf(name))}),
    switch: name => {
      const number = switches.findIndex(at => at.name === name);
      return {near: marks(ports, ({at}) => at === number), far: marks(arrayPorts, ({at}) => at === number)};
    },
    unit: name => ({unit: units.findIndex(unit => unit.name === name)}),
    model: name => ({near: marks(ports, ({model}) => model === name)}),
    firmware: name => ({near: marks(ports, ({firmware}) => firmware === name)}),
    host: name => ({near: marks(ports, ({host}) => hosts[host].name === name)}),
    group: number => ({near: marks(ports, ({host}) => groupOf[host] === number)})
  };

  /** The ports of hosts that belong to the thing, and the paths that lead through it. */
  function of({kind, name}) {
    const {near, far, unit} = {...none, ...kinds[kind](name)};
    const through = [];
    for (let row = 0; row < count; row++) {
      if (near[rows.port[row]] + far[rows.far[row]] > 0 || rows.unit[row] === unit) {
        through.push(row);
      }
    }
    return {ports: [...ports.keys()].filter(port => near[port] === 1), rows: through};
  }

  const sorted = set => [...set].filter(name => name !== undefined && name !== "")
    .sort((one, other) => one < other ? -1 : one > other ? 1 : 0);

  /** As san who answers. */
  function who(thing) {
    const found = new Map();
    const at = host => found.get(host) || found.set(host, {ports: new Set(), units: new Set(), disks: new Set()})
      .get(host);
    const through = of(thing);
    through.ports.forEach(port => at(ports[port].host).ports.add(ports[port].wwn));
    through.rows.forEach(row => {
      const host = at(rows.host[row]);
      host.ports.add(ports[rows.port[row]].wwn);
      host.units.add(units[rows.unit[row]].name);
      host.disks.add(data.disks[rows.disk[row]]);
    });
    return {thing: thing.name, kind: thing.kind, hosts: [...found.entries()].map(([host, seen]) => ({
      host: hosts[host].name, ports: sorted(seen.ports), units: sorted(seen.units), disks: sorted(seen.disks)}))
      .sort((one, other) => one.host < other.host ? -1 : 1)};
  }

  /** As san impact answers: units without a path then, and those with one that had more. */
  function impact(things) {
    const gone = new Uint8Array(count);
    things.forEach(thing => of(thing).rows.forEach(row => { gone[row] = 1; }));
    const answer = {thing: things.map(thing => thing.name), lost: [], lastPath: []};
    const before = new Set();
    const after = new Set();
    reaches.forEach(([host, unit, from, to]) => {
      if (!gone.subarray(from, to).includes(1)) {
        return;
      }
      before.clear();
      after.clear();
      for (let row = from; row < to; row++) {
        if (rows.online[row] === 1) {
          const pair = portName[rows.port[row]] * (names.size + 1) + farName[rows.far[row]];
          before.add(pair);
          if (gone[row] === 0) {
            after.add(pair);
          }
        }
      }
      if (before.size > 0 && after.size === 0 || after.size === 1 && before.size > 1) {
        const disks = new Set();
        for (let row = from; row < to; row++) {
          disks.add(data.disks[rows.disk[row]]);
        }
        answer[after.size === 0 ? "lost" : "lastPath"].push({
          host: hosts[host].name, unit: units[unit].name, disks: sorted(disks), mounts: sorted(mountsOf(host, unit))});
      }
    });
    const order = (one, other) => one.host < other.host ? -1 : one.host > other.host ? 1
      : one.unit < other.unit ? -1 : 1;
    answer.lost.sort(order);
    answer.lastPath.sort(order);
    return answer;
  }

  /** The ids of the boxes and, as "FROM TO", of the lines that paths through the thing take. */
  function drawn(thing) {
    const boxes = new Set();
    const lines = new Set();
    const step = (from, to) => { boxes.add(from).add(to); lines.add(from + " " + to); };
    const through = of(thing);
    through.ports.forEach(port => {
      const group = "g" + groupOf[ports[port].host];
      boxes.add(group);
      if (ports[port].at >= 0) {
        step(group, "s" + ports[port].at);
      }
    });
    const known = new Set();
    through.rows.forEach(row => {
      const [group, near, far] = [groupOf[rows.host[row]], ports[rows.port[row]].at, rows.far[row]];
      const key = (group * (switches.length + 1) + near + 1) * arrayPorts.length + far;
      if (known.has(key)) {
        return;
      }
      known.add(key);
      const at = arrayPorts[far].at;
      if (near < 0) {
        step("g" + group, "p" + far);
      } else {
        step("g" + group, "s" + near);
        if (near !== at) {
          step("s" + near, "s" + at);
        }
        step("s" + at, "p" + far);
      }
    });
    [...boxes].forEach(id => {
      const number = Number(id.slice(1));
      if (id[0] === "s") {
        boxes.add("f" + switches[number].fabric);
      } else if (id[0] === "p") {
        boxes.add("a" + arrayPorts[number].array);
      }
    });
    return {boxes, lines};
  }

  /** All that can be found, each thing once, with the words that it is found by and the boxes that it is in. */
  let index = null;
  function things() {
    if (index !== null) {
      return index;
    }
    const byKey = new Map();
    const add = (kind, name, ids, ...words) => {
      const key = kind + " " + name;
      if (!byKey.has(key)) {
        byKey.set(key, {kind, name, ids: new Set(), words: new Set([name])});
      }
      const thing = byKey.get(key);
      ids.forEach(id => thing.ids.add(id));
      words.forEach(word => thing.words.add(word));
    };
    hosts.forEach(({name, platform}, host) => add("host", name, ["g" + groupOf[host]], platform));
    data.fabrics.forEach((name, fabric) => add("fabric", name, ["f" + fabric]));
    switches.forEach(({name, domain}, at) => domain > 0 && add("switch", name, ["s" + at]));
    data.arrays.forEach(([name, product], array) => add("array", name, ["a" + array], product));
    arrayPorts.forEach(({wwn}, port) => add("port", wwn, ["p" + port]));
    ports.forEach(({host, wwn, model, firmware}) => {
      const box = ["g" + groupOf[host]];
      add("port", wwn, box, hosts[host].name);
      add("model", model, box);
      add("firmware", firmware, box);
    });
    reaches.forEach(([host, unit, from, to]) => {
      const words = [units[unit].product, ...mountsOf(host, unit)];
      for (let row = from; row < to; row++) {
        words.push(data.disks[rows.disk[row]] || "");
      }
      add("unit", units[unit].name, ["g" + groupOf[host]], ...words);
    });
    index = [...byKey.values()].filter(thing => thing.name !== "").map(thing => ({
      kind: thing.kind, name: thing.name, ids: [...thing.ids], text: [...thing.words].join(" ").toLowerCase()}));
    return index;
  }

  /** World-wide names are written with colons and without. */
  const plain = word => /^([0-9a-f]{2}:)+[0-9a-f]{0,2}$/.test(word) ? word.replace(/:/g, "") : word;

  /** The things that have all the words, or parts of words. */
  function find(text) {
    const words = text.toLowerCase().split(/\s+/).filter(word => word !== "").map(plain);
    return words.length === 0 ? [] : things().filter(thing => words.every(word => thing.text.includes(word)));
  }

  return {hosts, units, switches, arrayPorts, ports, groupOf, who, impact, drawn, find, mountsOf};
};
