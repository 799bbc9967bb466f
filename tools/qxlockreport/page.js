"use strict";
(() => {
  const data = JSON.parse(document.getElementById("data").textContent);
  const rowLimit = 200;

  // A row is [retired, address, name, figures...]; `at` is a figure's place in it.
  const columns = [
    { label: "Total wait", at: 7, time: true, bar: true },
    { label: "Longest wait", at: 8, time: true, bar: true },
    { label: "Longest hold", at: 5, time: true, bar: true },
    { label: "Contention", at: 9, time: false, bar: true },
    { label: "Total hold", at: 4, time: true, bar: false },
    { label: "Acquired", at: 6, time: false, bar: false },
    { label: "Released", at: 3, time: false, bar: false },
  ];
  const state = { sort: 0, descending: true, all: false };
  const byId = (id) => document.getElementById(id);

  function element(tag, className, text) {
    const made = document.createElement(tag);
    if (className) made.className = className;
    if (text !== undefined) made.textContent = text;
    return made;
  }

  const plain = new Intl.NumberFormat("en-US");
  function duration(microseconds) {
    const size = Math.abs(microseconds);
    for (const [unit, length] of [["s", 1e6], ["ms", 1e3]]) {
      if (size >= length) {
        const amount = microseconds / length;
        const digits = Math.abs(amount) < 10 ? 2 : Math.abs(amount) < 100 ? 1 : 0;
        return amount.toLocaleString("en-US", { minimumFractionDigits: digits, maximumFractionDigits: digits }) + " " + unit;
      }
    }
    return plain.format(microseconds) + " \u00B5s";
  }
  const show = (column, value) => (column.time ? duration(value) : plain.format(value));

  function dumpLabel(index) {
    const dump = data.dumps[index];
    return `${index + 1}. ${dump.title || "(no title)"} \u2013 ${dump.time}${dump.whole ? "" : " (cut short)"}`;
  }

  // The rows of two dumps side by side. A lock is found again by name and address, and otherwise,
  // as after another run, by its place among the locks of its name.
  function pairRows(first, second) {
    const pairs = first.map((row) => ({ a: row, b: null }));
    if (!second) return pairs;
    const rest = new Map();
    const exact = new Map(pairs.map((pair) => [pair.a[1] + pair.a[2], pair]));
    for (const row of second) {
      const pair = exact.get(row[1] + row[2]);
      if (pair && !pair.b) pair.b = row;
      else if (rest.has(row[2])) rest.get(row[2]).push(row);
      else rest.set(row[2], [row]);
    }
    for (const pair of pairs) {
      const left = rest.get(pair.a[2]);
      if (!pair.b && left && left.length) pair.b = left.shift();
    }
    for (const left of rest.values()) {
      for (const row of left) pairs.push({ a: null, b: row });
    }
    return pairs;
  }

  const valueOf = (row, column) => (row ? row[column.at] : null);
  const latest = (pair) => pair.b || pair.a;

  function sortValue(pair, order) {
    if (state.sort < 0) return latest(pair)[2].toLowerCase();
    const column = columns[state.sort];
    const a = valueOf(pair.a, column);
    const b = valueOf(pair.b, column);
    if (order === "change") return Math.abs((b ?? 0) - (a ?? 0));
    return (order === "second" ? b : a) ?? -1;
  }

  function visiblePairs(first, second) {
    const wanted = byId("filter").value.toLowerCase();
    const order = second ? byId("order").value : "first";
    const direction = state.descending ? -1 : 1;
    return pairRows(first, second)
      .filter((pair) => byId(latest(pair)[0] ? "retired" : "live").checked)
      .filter((pair) => latest(pair)[2].toLowerCase().includes(wanted))
      .map((pair) => ({ pair, key: sortValue(pair, order) }))
      .sort((x, y) => (x.key < y.key ? -direction : x.key > y.key ? direction : 0))
      .map((entry) => entry.pair);
  }

  function figure(column, side, row, longest) {
    const line = element("div", "figure " + side);
    if (!row) {
      line.append(element("span", "value none", "\u2013"));
      return line;
    }
    if (column.bar && longest > 0) {
      const bar = element("span", "bar");
      bar.style.width = `${(100 * Math.max(0, row[column.at])) / longest}%`;
      line.append(bar);
    }
    line.append(element("span", "value", show(column, row[column.at])));
    return line;
  }

  function change(column, pair) {
    const before = pair.a[column.at];
    const after = pair.b[column.at];
    if (before === after || before <= 0) return null;
    const percent = Math.round((100 * (after - before)) / before);
    const amount = percent < 1000 ? `${percent > 0 ? "+" : ""}${percent} %` : `\u00D7 ${plain.format(Math.round(after / before))}`;
    return element("span", "change " + (after > before ? "worse" : "better"), amount);
  }

  function lockCell(pair) {
    const row = latest(pair);
    const cell = element("td", "lock");
    const name = element("div", row[2] ? "name" : "name empty", row[2] || "(no name)");
    name.title = row[2];
    const place = element("div", "address");
    if (row[0]) place.append(element("span", "badge", "retired"));
    place.append("0x" + row[1]);
    cell.append(name, place);
    return cell;
  }

  function metricCell(column, pair, comparing, longest) {
    const cell = element("td", column.bar ? "metric" : "");
    cell.append(figure(column, "a", pair.a, longest));
    if (comparing) {
      const line = figure(column, "b", pair.b, longest);
      const difference = column.bar && pair.a && pair.b ? change(column, pair) : null;
      if (difference) line.insertBefore(difference, line.lastChild);
      cell.append(line);
    }
    return cell;
  }

  function drawBody(pairs, comparing) {
    const longest = columns.map((column) =>
      pairs.reduce((most, pair) => Math.max(most, valueOf(pair.a, column) ?? 0, valueOf(pair.b, column) ?? 0), 0));
    const shown = state.all ? pairs : pairs.slice(0, rowLimit);
    const rows = shown.map((pair) => {
      const line = element("tr", latest(pair)[0] ? "is-retired" : "");
      line.append(lockCell(pair), ...columns.map((column, index) => metricCell(column, pair, comparing, longest[index])));
      return line;
    });
    if (!rows.length) {
      const empty = element("td", "none", "No lock fits.");
      empty.colSpan = columns.length + 1;
      rows.push(element("tr"));
      rows[0].append(empty);
    }
    byId("body").replaceChildren(...rows);
    byId("more").hidden = shown.length === pairs.length;
    byId("more").textContent = `Show all ${plain.format(pairs.length)} locks`;
  }

  function headCell(label, index) {
    const cell = element("th");
    const button = element("button", "", label);
    button.type = "button";
    if (state.sort === index) cell.setAttribute("aria-sort", state.descending ? "descending" : "ascending");
    button.onclick = () => {
      state.descending = state.sort === index ? !state.descending : index >= 0;
      state.sort = index;
      draw();
    };
    cell.scope = "col";
    cell.append(button);
    return cell;
  }

  function summary(rows) {
    const sum = (at) => rows.reduce((total, row) => total + row[at], 0);
    const top = (at) => rows.reduce((most, row) => (!most || row[at] > most[at] ? row : most), null);
    const retired = rows.filter((row) => row[0]).length;
    const worst = (at) => ({ value: duration(top(at) ? top(at)[at] : 0), detail: top(at) ? top(at)[2] || "(no name)" : "" });
    return [
      { label: "Locks", value: plain.format(rows.length), detail: `${plain.format(rows.length - retired)} live, ${plain.format(retired)} retired` },
      { label: "Total wait", value: duration(sum(7)), detail: `in ${plain.format(sum(6))} acquisitions` },
      { label: "Longest wait", ...worst(8) },
      { label: "Longest hold", ...worst(5) },
      { label: "Contention", value: plain.format(sum(9)), detail: "acquisitions that had to block" },
    ];
  }

  function drawTiles(first, second) {
    const compared = second ? summary(second) : [];
    byId("tiles").replaceChildren(...summary(first).map((entry, index) => {
      const tile = element("div", "tile");
      tile.append(element("h2", "", entry.label), element("p", "", entry.value), element("small", "", entry.detail));
      tile.lastChild.title = entry.detail;
      if (second) {
        tile.append(element("p", "b", compared[index].value), element("small", "", compared[index].detail));
        tile.lastChild.title = compared[index].detail;
      }
      return tile;
    }));
  }

  function drawNotes(chosen) {
    const notes = [];
    if (chosen.some((index) => !data.dumps[index].whole)) {
      notes.push("A dump is cut short: its last line is missing, as when the disk was full.");
    }
    if (data.strangeLines) notes.push(`${data.strangeLines} damaged lines of the report are left out.`);
    byId("notes").hidden = !notes.length;
    byId("notes").textContent = notes.join(" ");
  }

  function draw() {
    const first = Number(byId("first").value);
    const second = byId("second").value === "" ? null : Number(byId("second").value);
    const rows = (index) => (index === null ? null : data.dumps[index].rows);
    byId("orderLabel").hidden = second === null;
    drawTiles(rows(first), rows(second));
    drawNotes(second === null ? [first] : [first, second]);
    byId("head").replaceChildren(headCell("Lock", -1), ...columns.map((column, index) => headCell(column.label, index)));
    drawBody(visiblePairs(rows(first), rows(second)), second !== null);
  }

  function option(value, text) {
    const made = element("option", "", text);
    made.value = value;
    return made;
  }

  const count = data.dumps.length;
  byId("source").textContent = `${data.source}, ${count === 1 ? "one dump" : `${count} dumps`}`;
  const choices = data.dumps.map((dump, index) => index);
  byId("first").append(...choices.map((index) => option(index, dumpLabel(index))));
  byId("second").append(option("", "nothing"), ...choices.map((index) => option(index, dumpLabel(index))));
  byId("first").value = String(Math.max(0, count - 2));
  byId("second").value = count > 1 ? String(count - 1) : "";
  for (const id of ["first", "second", "order", "filter", "live", "retired"]) {
    byId(id).addEventListener("input", () => {
      state.all = false;
      draw();
    });
  }
  byId("more").onclick = () => {
    state.all = true;
    draw();
  };
  draw();
})();
