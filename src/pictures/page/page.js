// The page of a shot: the table and the picture show the same objects. Tens of thousands of regions
// must not slow it down, so that nothing here walks over them: events are caught on their way up,
// an object is marked by one style rule for its class, and only the rows in view exist.
"use strict";
(() => {
  const RowHeight = 28; // as the style says
  const RowsAhead = 10;
  const MostZoom = 200;
  const ClickDistance = 4;

  const byId = (id) => document.getElementById(id);
  const data = JSON.parse(byId("data").textContent);
  const stage = byId("stage");
  const grid = byId("rows");
  const svgs = Array.from(stage.querySelectorAll("svg"));

  const state = {
    picture: 0,
    selected: null, // object numbers; the open share is 0
    hovered: null,
    column: "", // the first picture's main one
    ascending: false,
    rows: [],
    zoom: 1,
    x: 0,
    y: 0,
  };

  // How a value is shown, in the order of the columns. A page has the columns that its pictures
  // have values for; what has no room in the table stands under the picture.
  const texts = {
    viewFactor: (value) => value.toFixed(5),
    exactFactor: (value) => value.toFixed(5),
    wrong: (value) => (100 * value).toFixed(2),
    shownWrongly: (value) => (100 * value).toFixed(2),
    missing: (value) => (100 * value).toFixed(2),
    solidAngle: (value) => value.toFixed(4),
    exactAngle: (value) => value.toFixed(4),
    area: (value) => String(Number(value.toPrecision(5))),
    share: (value) => (100 * value).toFixed(2),
  };

  const OnlyUnderPicture = ["exactAngle", "shownWrongly", "missing"];
  const OnlyInTable = ["wrong"];

  // The rows of a picture as objects with names for their columns. Of scenes with classes a page has
  // a class for each row but that of the sky.
  const pictures = data.pictures.map(({ name, field, columns, rows, classes, map }, i) => ({
    name,
    field,
    map,
    audit: null,
    projection: map?.opening?.projection ?? map?.projection, // that is shown
    angle: map?.opening?.angle ?? 90, // its field of view, degrees
    prefix: `p${i + 1}-`,
    main: columns[0],
    hasClasses: Boolean(classes),
    known: columns,
    rows: rows.map(([number, id, ...values], i) => ({
      number, id,
      ...Object.fromEntries(columns.map((column, k) => [column, values[k]])),
      class: classes?.[i] ?? "",
      label: number === 0 ? "open (sky)" : id === "" ? `object ${number}` : id,
      keys: { id: id.toLowerCase(), class: (classes?.[i] ?? "").toLowerCase() },
    })),
  }));
  // How wrong a picture is, altogether and by object, as shares of what it covers.
  (data.audits ?? []).forEach((audit, i) => {
    if (!audit) return;
    const picture = pictures[i];
    const wrongs = new Map(audit.objects.map(([number, ...values]) => [number, values]));
    for (const row of picture.rows) {
      const [wrong, shownWrongly, missing] = wrongs.get(row.number) ?? [0, 0, 0];
      Object.assign(row, { wrong, shownWrongly, missing });
    }
    picture.audit = audit;
    picture.known = [...picture.known, "wrong", "shownWrongly", "missing"];
  });
  for (const picture of pictures) {
    const known = Object.keys(texts).filter((column) => picture.known.includes(column));
    picture.values = known.filter((column) => !OnlyInTable.includes(column));
    picture.columns = known.filter((column) => !OnlyUnderPicture.includes(column));
    picture.byNumber = new Map(picture.rows.map((row) => [row.number, row]));
    picture.most = picture.rows.reduce((most, row) => Math.max(most, row[picture.main]), 1e-12);
  }
  state.column = pictures[0].main;
  const rowOf = (number) => pictures[state.picture].byNumber.get(number);

  // Marks ------------------------------------------------------------------------------------------

  const rule = (number, name) =>
    number === null ? "" :
      `#stage .o${number}[fill]{fill:var(--${name});fill-opacity:1}` +
      `#stage .o${number}[stroke]{stroke:var(--mark-line)}` +
      `#stage .spread.o${number}{stroke:var(--${name})}` +
      `#stage path[data-region].o${number}:not([fill]){stroke-width:3px}`;

  // To draw many regions anew takes longer than a frame: on its way over them the pointer marks only
  // rows, and the picture once it rests.
  const isLarge = svgs.some((svg) => svg.querySelectorAll("path").length > 3000);
  const Rest = 60; // milliseconds
  let resting = 0;

  function markPicture() {
    byId("marks").textContent = rule(state.hovered, "hovered") + rule(state.selected, "selected");
  }

  let isPending = false;
  function mark(waitsForRest = false) {
    clearTimeout(resting);
    if (waitsForRest) resting = setTimeout(markPicture, Rest);
    else requestAnimationFrame(markPicture);
    if (isPending) return;
    isPending = true;
    requestAnimationFrame(() => {
      isPending = false;
      for (const row of byId("shown").rows) markRow(row);
    });
  }

  function markRow(row) {
    const number = Number(row.dataset.number);
    row.classList.toggle("hovered", number === state.hovered);
    row.classList.toggle("selected", number === state.selected);
    row.setAttribute("aria-selected", String(number === state.selected));
  }

  const figures = (row) => {
    const { values, field } = pictures[state.picture];
    const parts = {
      viewFactor: (text) => `view factor ${text}`,
      exactFactor: (text) => `exactly ${text}`,
      solidAngle: (text) => `solid angle ${text} sr`,
      exactAngle: (text) => `exactly ${text} sr`,
      area: (text) => `area ${text}`,
      share: (text) => `${text} % of the ${field}`,
      shownWrongly: (text) => `shown wrongly on ${text} % of what the picture covers`,
      missing: (text) => `missing on ${text} %`,
    };
    const isRight = (column) =>
      (column === "shownWrongly" || column === "missing") && texts[column](row[column]) === "0.00";
    return values.filter((column) => !isRight(column)).map((column) => parts[column](texts[column](row[column]))).join(", ");
  };

  const described = (row) => row.class === "" ? figures(row) : `${row.class}, ${figures(row)}`;

  const nameOf = (number) => (number === 0 ? "the sky" : rowOf(number)?.label ?? `object ${number}`);

  // A wrong part hides the region below it: it says itself what is shown.
  function tell(path, part) {
    if (part) {
      const { shown, seen } = part.dataset;
      byId("status").textContent = shown === seen
        ? `Wrong part: the picture shows ${nameOf(Number(shown))}, but not the face of it that is seen here.`
        : `Wrong part: the picture shows ${nameOf(Number(shown))}, but ${nameOf(Number(seen))} is seen here.`;
      return;
    }
    const row = rowOf(state.hovered ?? state.selected);
    if (!row) {
      byId("status").textContent = "Point at an object, or choose one in the table.";
      return;
    }
    const place = path ? `, face ${path.dataset.face}, region ${path.dataset.region}` : "";
    byId("status").textContent = `${row.label}${place}: ${described(row)}`;
  }

  function hover(number, path, part) {
    if (number !== state.hovered) {
      state.hovered = number;
      mark(isLarge);
    }
    tell(path, part);
  }

  function select(number, options = {}) {
    state.selected = number;
    const at = state.rows.findIndex((row) => row.number === number);
    if (at >= 0 && options.scroll !== false) scrollTo(at);
    if (at >= 0) grid.setAttribute("aria-activedescendant", `row-${number}`);
    else grid.removeAttribute("aria-activedescendant");
    mark();
    tell();
    const row = rowOf(number);
    byId("announced").textContent = row ? `${row.label}: ${described(row)}` : "";
  }

  // Table ------------------------------------------------------------------------------------------

  const isText = (column) => column === "id" || column === "class";
  const isShown = ({ columns, hasClasses }, column) =>
    column === "id" || (column === "class" ? hasClasses : columns.includes(column));

  function listRows() {
    const query = byId("search").value.trim().toLowerCase();
    const all = pictures[state.picture].rows;
    const rows = query === "" ? all.slice()
      : all.filter(({ keys }) => keys.id.includes(query) || keys.class.includes(query));
    const sign = state.ascending ? 1 : -1;
    const column = state.column;
    rows.sort(isText(column)
      ? ({ keys: a, number }, { keys: b, number: other }) =>
        sign * (a[column] < b[column] ? -1 : a[column] > b[column] ? 1 : 0) || number - other
      : (a, b) => sign * (a[column] - b[column]) || a.number - b.number);
    state.rows = rows;
    const count = all.filter((row) => row.number !== 0).length;
    byId("found").textContent = query === "" ? `${count} objects` : `${rows.length} of ${count}`;
    grid.setAttribute("aria-rowcount", String(rows.length + 1));
    for (const header of grid.querySelectorAll("th")) {
      const isSorted = header.dataset.column === column;
      header.setAttribute("aria-sort",
        !isSorted ? "none" : state.ascending ? "ascending" : "descending");
    }
    showRows();
  }

  function cell(row, text, className) {
    const td = row.insertCell();
    td.setAttribute("role", "gridcell");
    td.textContent = text;
    if (className) td.className = className;
    return td;
  }

  function makeRow(entry, index) {
    const row = document.createElement("tr");
    row.id = `row-${entry.number}`;
    row.dataset.number = entry.number;
    row.setAttribute("role", "row");
    row.setAttribute("aria-rowindex", String(index + 2));
    if (entry.number === 0) row.classList.add("open");
    cell(row, entry.label).title = entry.label;
    const { columns, hasClasses, main, most } = pictures[state.picture];
    if (hasClasses) cell(row, entry.class, "text").title = entry.class;
    for (const column of columns) {
      const value = cell(row, texts[column](entry[column]), column === main ? "factor" : "");
      if (column === main)
        value.style.setProperty("--share", `${(100 * entry[column] / most).toFixed(1)}%`);
    }
    markRow(row);
    return row;
  }

  // Only the rows in view and some around them; empty space stands for the others.
  function showRows() {
    const count = state.rows.length;
    const first = Math.max(0, Math.floor(grid.scrollTop / RowHeight) - RowsAhead);
    const last = Math.min(count, Math.ceil((grid.scrollTop + grid.clientHeight) / RowHeight) + RowsAhead);
    byId("shown").replaceChildren(
      ...state.rows.slice(first, last).map((entry, i) => makeRow(entry, first + i)));
    byId("before").rows[0].cells[0].style.height = `${Math.min(first, count) * RowHeight}px`;
    byId("after").rows[0].cells[0].style.height = `${Math.max(0, count - last) * RowHeight}px`;
  }

  function scrollTo(index) {
    const head = grid.querySelector("thead").offsetHeight;
    const top = index * RowHeight;
    if (top < grid.scrollTop) grid.scrollTop = top;
    const bottom = top + RowHeight + head - grid.clientHeight;
    if (bottom > grid.scrollTop) grid.scrollTop = bottom;
    showRows();
  }

  function step(by) {
    if (state.rows.length === 0) return;
    const at = state.rows.findIndex((row) => row.number === state.selected);
    const next = at < 0 ? (by < 0 ? state.rows.length - 1 : 0)
      : Math.min(state.rows.length - 1, Math.max(0, at + by));
    select(state.rows[next].number);
  }

  // Zoom -------------------------------------------------------------------------------------------

  // While it moves, the picture is a layer of its own that only shifts; at rest it is drawn anew.
  let rest = 0;
  function place() {
    stage.classList.add("moving");
    clearTimeout(rest);
    rest = setTimeout(() => {
      stage.classList.remove("moving");
      hatch();
    }, 200);
    const { width, height } = stage.getBoundingClientRect();
    const within = (value, size) => Math.min(0.5 * size, Math.max((0.5 - state.zoom) * size, value));
    state.x = within(state.x, width);
    state.y = within(state.y, height);
    for (const svg of svgs)
      svg.style.transform = `translate(${state.x}px,${state.y}px) scale(${state.zoom})`;
    byId("zoom").textContent = `${Math.round(100 * state.zoom)} %`;
  }

  // The hatch is as wide at any zoom.
  function hatch() {
    for (const pattern of stage.querySelectorAll(".hatch"))
      pattern.setAttribute("patternTransform", `rotate(45) scale(${1 / state.zoom})`);
  }

  // Keeps the place under (x, y) of the stage where it is.
  function zoomBy(factor, x = stage.clientWidth / 2, y = stage.clientHeight / 2) {
    const zoom = Math.min(MostZoom, Math.max(1, state.zoom * factor));
    const change = zoom / state.zoom;
    state.x = x - (x - state.x) * change;
    state.y = y - (y - state.y) * change;
    state.zoom = zoom;
    if (zoom === 1) state.x = state.y = 0;
    place();
  }

  function panBy(x, y) {
    state.x += x;
    state.y += y;
    place();
  }

  function zoomToSelected() {
    const paths = svgs[state.picture].getElementsByClassName(`o${state.selected}`);
    const frame = stage.getBoundingClientRect();
    let left = Infinity, top = Infinity, right = -Infinity, bottom = -Infinity;
    for (const path of paths) {
      const box = path.getBoundingClientRect();
      left = Math.min(left, box.left);
      top = Math.min(top, box.top);
      right = Math.max(right, box.right);
      bottom = Math.max(bottom, box.bottom);
    }
    if (!(right > left) && !(bottom > top)) return;
    const x = (left + right) / 2 - frame.left;
    const y = (top + bottom) / 2 - frame.top;
    const fit = 0.5 * Math.min(frame.width / Math.max(right - left, 1),
                               frame.height / Math.max(bottom - top, 1));
    panBy(frame.width / 2 - x, frame.height / 2 - y);
    zoomBy(fit);
  }

  const zoomKeys = {
    "+": () => zoomBy(1.5),
    "=": () => zoomBy(1.5),
    "-": () => zoomBy(1 / 1.5),
    "0": () => zoomBy(0),
  };

  // What the user does -----------------------------------------------------------------------------

  const regionAt = (target) => target instanceof Element ? target.closest("path[data-region]") : null;
  const wrongAt = (target) => target instanceof Element ? target.closest("path[data-shown]") : null;
  const numberOf = (path) => Number(/\bo(-?\d+)/.exec(path.getAttribute("class"))[1]);
  // The object that is shown there; shots have no object for the sky.
  const objectAt = (target) => {
    const path = regionAt(target);
    return path ? numberOf(path) : Number(wrongAt(target)?.dataset.shown ?? 0) || null;
  };
  const rowAt = (target) => target.closest("#shown tr");

  const pointers = new Map(); // those that are down, by their id
  let travelled = 0;

  stage.addEventListener("pointerover", (event) => {
    if (pointers.size > 0) return;
    const path = regionAt(event.target);
    hover(path ? numberOf(path) : objectAt(event.target), path, wrongAt(event.target));
  });
  stage.addEventListener("pointerleave", () => hover(null));
  stage.addEventListener("pointerdown", (event) => {
    if (event.button !== 0) return;
    if (pointers.size === 0) travelled = 0;
    pointers.set(event.pointerId, { x: event.clientX, y: event.clientY });
  });
  stage.addEventListener("pointermove", (event) => {
    const before = pointers.get(event.pointerId);
    if (!before) return;
    const now = { x: event.clientX, y: event.clientY };
    travelled += Math.hypot(now.x - before.x, now.y - before.y);
    if (travelled < ClickDistance) return;
    if (!stage.hasPointerCapture(event.pointerId)) stage.setPointerCapture(event.pointerId);
    if (pointers.size === 2) pinch(event.pointerId, now);
    else panBy(now.x - before.x, now.y - before.y);
    pointers.set(event.pointerId, now);
  });
  for (const name of ["pointerup", "pointercancel"]) {
    stage.addEventListener(name, (event) => {
      if (!pointers.delete(event.pointerId) || name === "pointercancel") return;
      if (travelled >= ClickDistance) return;
      const path = regionAt(event.target);
      select(path ? numberOf(path) : objectAt(event.target));
    });
  }

  function pinch(moved, now) {
    const [other] = [...pointers].filter(([id]) => id !== moved).map(([, point]) => point);
    const before = pointers.get(moved);
    const frame = stage.getBoundingClientRect();
    const length = (p) => Math.max(1, Math.hypot(p.x - other.x, p.y - other.y));
    zoomBy(length(now) / length(before), (now.x + other.x) / 2 - frame.left,
           (now.y + other.y) / 2 - frame.top);
  }

  stage.addEventListener("wheel", (event) => {
    event.preventDefault();
    const frame = stage.getBoundingClientRect();
    const lines = event.deltaMode === WheelEvent.DOM_DELTA_PIXEL ? event.deltaY / 100 : event.deltaY / 3;
    zoomBy(Math.pow(1.25, -Math.max(-4, Math.min(4, lines))), event.clientX - frame.left,
           event.clientY - frame.top);
  }, { passive: false });

  stage.addEventListener("keydown", (event) => {
    const far = event.shiftKey ? 200 : 50;
    const moves = { ArrowLeft: [far, 0], ArrowRight: [-far, 0], ArrowUp: [0, far], ArrowDown: [0, -far] };
    if (!moves[event.key]) return;
    event.preventDefault();
    panBy(...moves[event.key]);
  });

  grid.addEventListener("pointerover", (event) => {
    const row = rowAt(event.target);
    hover(row ? Number(row.dataset.number) : null);
  });
  grid.addEventListener("pointerleave", () => hover(null));
  grid.addEventListener("click", (event) => {
    const header = event.target.closest("th");
    const row = rowAt(event.target);
    if (row) select(Number(row.dataset.number), { scroll: false });
    if (!header) return;
    const column = header.dataset.column;
    state.ascending = column === state.column ? !state.ascending : isText(column);
    state.column = column;
    grid.scrollTop = 0;
    listRows();
  });
  grid.addEventListener("keydown", (event) => {
    if (event.target !== grid) return; // the headers have keys of their own
    const page = Math.max(1, Math.floor(grid.clientHeight / RowHeight) - 2);
    const steps = { ArrowDown: 1, ArrowUp: -1, PageDown: page, PageUp: -page,
                    Home: -Infinity, End: Infinity };
    if (event.key in steps) step(steps[event.key]);
    else if (event.key === "Enter") zoomToSelected();
    else return;
    event.preventDefault();
  });
  grid.addEventListener("scroll", () => requestAnimationFrame(showRows), { passive: true });

  byId("search").addEventListener("input", () => {
    grid.scrollTop = 0;
    listRows();
  });
  byId("search").addEventListener("keydown", (event) => {
    if (event.key === "ArrowDown" || event.key === "Enter") {
      event.preventDefault();
      if (state.rows.length > 0) select(state.rows[0].number);
      grid.focus();
    }
  });

  document.addEventListener("keydown", (event) => {
    if (event.ctrlKey || event.metaKey || event.altKey) return;
    const isTyping = event.target === byId("search");
    if (event.key === "Escape") {
      if (isTyping) {
        byId("search").value = "";
        listRows();
      }
      select(null);
    } else if (event.key === "/" && !isTyping) {
      event.preventDefault();
      byId("search").select();
      byId("search").focus();
    } else if (!isTyping && zoomKeys[event.key]) {
      zoomKeys[event.key]();
    } else if (!isTyping && event.key.toLowerCase() === "w" && hasShading()) {
      byId("show-wrong").checked = !byId("show-wrong").checked;
      shade();
      byId("announced").textContent =
        byId("show-wrong").checked ? "Wrong parts are shaded." : "Wrong parts are not shaded.";
    }
  });

  byId("zoom-in").addEventListener("click", zoomKeys["+"]);
  byId("zoom-out").addEventListener("click", zoomKeys["-"]);
  byId("zoom-reset").addEventListener("click", zoomKeys["0"]);
  addEventListener("resize", () => {
    place();
    showRows();
  });

  // Wrong parts ------------------------------------------------------------------------------------

  const shadingOf = (picture) => svgs[picture].querySelector(".wrong");
  const hasShading = () => Boolean(shadingOf(state.picture));

  // As many digits as matter; less than that is as good as nothing.
  const percent = (share) => {
    const value = 100 * share;
    if (value === 0) return "0 %";
    return value < 0.001 ? "less than 0.001 %" : `${Number(value.toPrecision(3))} %`;
  };

  // What there is to say of a picture, shortly and more of it.
  function verdict({ rows, audit }) {
    const { share, shaded } = audit;
    const narrow = Math.max(0, share - shaded);
    if (!hasShading())
      return ["No wrong part: the picture shows what is seen.", share === 0 ? ""
        : `Strips along edges, too narrow to be shaded: ${percent(share)} of what it covers.`];
    const wrongOf = (row) => (row.number > 0 ? row.shownWrongly + row.missing : 0);
    const worst = rows.reduce((most, row) => (wrongOf(row) > wrongOf(most) ? row : most));
    return [`${percent(share)} of what the picture covers`,
      "There something else is seen than the picture shows" +
      (wrongOf(worst) > 0 ? `, most of it at ${worst.label}.` : ".") +
      (narrow > 0 ? ` Strips along edges, too narrow to be shaded: ${percent(narrow)}.` : "")];
  }

  function shade() {
    stage.classList.toggle("without-wrong", !byId("show-wrong").checked);
    if (state.hovered === null) tell();
  }

  function listWrong() {
    const picture = pictures[state.picture];
    byId("wrong").hidden = !picture.audit;
    byId("wrong-choice").hidden = byId("wrong-key").hidden = !hasShading();
    const [short, more] = picture.audit ? verdict(picture) : ["", ""];
    byId("wrong-share").textContent = short;
    byId("wrong-more").textContent = more;
  }

  byId("show-wrong").addEventListener("change", shade);

  // Projections ------------------------------------------------------------------------------------

  function listProjections() {
    const { map, projection, angle } = pictures[state.picture];
    byId("views").hidden = !map;
    if (!map) return;
    byId("field-of-view").value = angle;
    byId("projection").replaceChildren(...drawMap.projectionsOf(map).map(({ name, label }) =>
      new Option(label, name, false, name === projection)));
    byId("projection").value = projection;
    project();
  }

  const hasAngle = (map, name) =>
    Boolean(drawMap.projectionsOf(map).find((entry) => entry.name === name)?.hasAngle);

  function project() {
    const picture = pictures[state.picture];
    const svg = svgs[state.picture];
    picture.projection = byId("projection").value;
    byId("angle").hidden = !hasAngle(picture.map, picture.projection);
    byId("angle").querySelector("output").textContent = `${Math.round(picture.angle)}\u00b0`;
    if (picture.projection === picture.map.projection) drawMap.restore(svg, picture.prefix);
    else drawMap(svg, picture.prefix, picture.map, picture.projection, picture.angle);
  }

  // While the angle changes, the picture follows once a frame.
  let isProjecting = false;
  byId("field-of-view").addEventListener("input", () => {
    pictures[state.picture].angle = Number(byId("field-of-view").value);
    if (isProjecting) return;
    isProjecting = true;
    requestAnimationFrame(() => {
      isProjecting = false;
      project();
    });
  });
  byId("projection").addEventListener("change", () => {
    project();
    zoomBy(0);
  });

  // Start ------------------------------------------------------------------------------------------

  function show(picture) {
    state.picture = picture;
    state.hovered = null;
    svgs.forEach((svg, i) => svg.toggleAttribute("hidden", i !== picture));
    const { rows, columns } = pictures[picture];
    let shown = 0;
    for (const header of grid.querySelectorAll("th")) {
      header.hidden = !isShown(pictures[picture], header.dataset.column);
      shown += header.hidden ? 0 : 1;
    }
    byId("objects").classList.toggle("wide", shown > 5);
    byId("objects").classList.toggle("widest", shown > 6);
    for (const space of ["before", "after"]) byId(space).rows[0].cells[0].colSpan = shown;
    const sum = (column) => rows.reduce((total, row) => total + row[column], 0);
    const factor = columns.includes("viewFactor")
      ? `view factor ${texts.viewFactor(sum("viewFactor"))}, ` : "";
    byId("sum").textContent = columns.includes("area")
      ? `All objects together: area ${texts.area(sum("area"))}.`
      : `All objects and the open share together: ${factor}${texts.solidAngle(sum("solidAngle"))} sr.`;
    if (!isShown(pictures[picture], state.column))
      state.column = pictures[picture].main;
    listProjections();
    listWrong();
    listRows();
    mark();
    tell();
  }

  if (pictures.length > 1) {
    if (pictures.some(({ map, columns }) => map || columns.includes("area")))
      byId("projections").querySelector("legend").textContent = "Seen from";
    pictures.forEach((picture, i) => {
      const label = document.createElement("label");
      const input = document.createElement("input");
      input.type = "radio";
      input.name = "projection";
      input.value = picture.name;
      input.checked = i === 0;
      input.addEventListener("change", () => show(i));
      label.append(input, ` ${picture.name}`);
      byId("projections").append(label);
    });
    byId("projections").hidden = false;
  }
  show(0);
  stage.classList.add("ready");
})();
