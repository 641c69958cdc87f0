// Draws a visibility map in any projection. The page has the map's vertices as unit vectors in the
// axes of the eye (x right, y up, z forward) and the rings of its cells; a picture is made of them
// by setting the paths' data anew.
//
// Every projection here is one about an axis: a fisheye or a perspective about forward, where a
// direction at the angle `theta` from the axis lies at a radius of its own, and a band about
// upwards, whose x is the azimuth. Rings are unrolled about the axis: points are pairs of the angle
// around it, `turn`, which runs on beyond a whole turn, and `theta`. What lies outside the picture
// is drawn, too, in any shape that stays outside, and a clip path cuts it off: so seams are clean,
// and nothing has to be cut.
"use strict";
const drawMap = (() => {
  const Pi = Math.PI;
  const LargestError = 0.1; // pixels
  const Unit = 1e7; // of the vertices' whole numbers
  const Margin = 1.02; // so that no line of a rim is cut
  const NearPole = 1e-9;
  const MostDepth = 16;
  const OutsideStep = 0.3; // of a turn's angle, outside the picture

  const cross = (a, b) =>
    [a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0]];
  const dot = (a, b) => a[0] * b[0] + a[1] * b[1] + a[2] * b[2];
  const scaled = (a, by) => [a[0] * by, a[1] * by, a[2] * by];
  const unit = (a) => scaled(a, 1 / Math.hypot(...a));
  const degrees = (angle) => (angle * Pi) / 180;
  // Goes on in a straight line from an angle at which a law gets too steep.
  const tamed = (law, from) => {
    const step = 1e-4;
    const slope = (law(from) - law(from - step)) / step;
    return (theta) => (theta <= from ? law(theta) : law(from) + slope * (theta - from));
  };

  // Fisheyes: the radius for an angle from the middle; 1 is the rim, at the right angle. Radii go on
  // growing behind it.
  const radii = {
    fisheye: (theta) => (theta <= Pi / 2 ? Math.sin(theta) : 2 - Math.sin(theta)),
    equidistant: (theta) => theta / (Pi / 2),
    equisolid: (theta) => Math.sin(theta / 2) / Math.SQRT1_2,
    stereographic: tamed((theta) => Math.tan(theta / 2), degrees(120)),
  };
  // Tangents, up to some way behind the border at `most`.
  const tangent = (most) => tamed(Math.tan, Math.atan(1.5 * most));

  const list = [
    { name: "fisheye", label: "orthographic fisheye" },
    { name: "equidistant", label: "equidistant fisheye" },
    { name: "equisolid", label: "equisolid fisheye" },
    { name: "stereographic", label: "stereographic fisheye" },
    { name: "equirectangular", label: "equirectangular" },
    { name: "equirectangular-half", label: "equirectangular, in front", isOfSphere: true },
    { name: "cylindrical", label: "cylindrical", hasAngle: true },
    { name: "perspective", label: "perspective", hasAngle: true },
  ];

  // What is known of a picture: its axis, its plane and its frame, in pixels.
  function pictureOf(name, angle, { isSphere, height, opening }) {
    if (radii[name]) return disc(radii[name], height);
    if (name === "perspective") return perspective(degrees(angle), height, opening);
    const isWhole = isSphere && name !== "equirectangular-half";
    return name === "cylindrical" ? band(cylinder(degrees(angle)), isWhole, height)
      : band({ at: (theta) => Pi / 2 - theta, most: Pi / 2 }, isWhole, height);
  }

  // The solid angle between a pole and an arc, by the cotangents of half its ends' angles from there.
  const triangle = (turn, a, b) => 2 * Math.atan2(Math.sin(turn), a * b + Math.cos(turn));

  const polar = (radius, most, picture) => ({
    ...picture,
    isBand: false,
    axes: (d) => d,
    // Between the axis and an arc, above 0 where turns grow.
    solidAngle: (turn, a, b) => triangle(turn, 1 / Math.tan(a / 2), 1 / Math.tan(b / 2)),
    place: (turn, theta) => {
      const r = radius(theta) * picture.scale;
      return [picture.middle[0] + r * Math.cos(turn), picture.middle[1] - r * Math.sin(turn)];
    },
    isOutside: (theta) => radius(theta) > 1.1 * most,
    all: () => { // all around the picture
      const r = 2 * radius(Pi) * picture.scale;
      const [x, y] = picture.middle;
      return [[x - r, y - r], [x + r, y - r], [x + r, y + r], [x - r, y + r]];
    },
  });

  function disc(radius, height) {
    const scale = height / 2 / Margin;
    return polar(radius, 1, {
      width: height, height, scale, middle: [height / 2, height / 2],
      clip: ["circle", { cx: height / 2, cy: height / 2, r: scale }],
    });
  }

  // The window may be shifted to the right and upwards, by parts of its width and height.
  function perspective(angle, height, { aspect = 1.5, shift = [0, 0] } = {}) {
    const half = Math.tan(angle / 2);
    const width = Math.round(aspect * height);
    const most = half * Math.hypot(1 + 2 * Math.abs(shift[0]), (1 + 2 * Math.abs(shift[1])) / aspect);
    return polar(tangent(most), most, {
      width, height, scale: width / 2 / half,
      middle: [width * (0.5 - shift[0]), height * (0.5 + shift[1])],
      clip: ["rect", { width, height }],
    });
  }

  function cylinder(angle) {
    const most = Math.tan(angle / 2);
    const height = tangent(most);
    return { at: (theta) => Math.sign(Pi / 2 - theta) * height(Math.abs(Pi / 2 - theta)), most };
  }

  // Turns run from the left border to the right one, about the upward axis.
  function band({ at, most }, isWhole, height) {
    const half = isWhole ? Pi : Pi / 2;
    const scale = height / 2 / most / Margin;
    const width = Math.round((height * half) / most);
    const place = (turn, theta) => [width / 2 + turn * scale, height / 2 - at(theta) * scale];
    const [left, top] = [width / 2 - half * scale, height / 2 - most * scale];
    return {
      isBand: true, half, width, height, scale, place,
      clip: ["rect", { x: left, y: top, width: 2 * half * scale, height: 2 * most * scale }],
      axes: (d) => [d[2], d[0], d[1]],
      // Between the lower pole and an arc, above 0 where turns fall.
      solidAngle: (turn, a, b) => -triangle(turn, Math.tan(a / 2), Math.tan(b / 2)),
      isOutside: (theta) => Math.abs(at(theta)) > 1.1 * most,
      all: () => [place(-half, Pi), place(half, Pi), place(half, 0), place(-half, 0)],
    };
  }

  // Unrolled arcs -----------------------------------------------------------------------------------

  const thetaOf = (d) => Math.atan2(Math.hypot(d[0], d[1]), d[2]);
  const isPole = (d) => Math.hypot(d[0], d[1]) < NearPole;
  const wrapped = (turn) => turn - 2 * Pi * Math.round(turn / (2 * Pi));

  // The arc from a to b as flat pairs [turn, theta, ...], off it in the picture by a tenth of a
  // pixel at most. It is divided first where it is nearest to the axis and farthest from it: between
  // these, theta only rises or only falls.
  function unrolled(a, b, picture) {
    const points = [];
    const ends = [a, ...extremes(a, b), b];
    for (let i = 0; i + 1 < ends.length; ++i) addPiece(points, ends[i], ends[i + 1], picture);
    return points;
  }

  function extremes(a, b) {
    const normal = cross(a, b);
    const length = Math.hypot(...normal);
    if (!(length > 1e-12)) return [];
    const n = scaled(normal, 1 / length);
    const foot = [-n[2] * n[0], -n[2] * n[1], 1 - n[2] * n[2]];
    const size = Math.hypot(...foot);
    if (!(size > 1e-6)) return []; // all of the circle is as far from the axis
    for (const p of [scaled(foot, 1 / size), scaled(foot, -1 / size)])
      if (dot(cross(a, p), n) > 1e-9 && dot(cross(p, b), n) > 1e-9) return [p];
    return [];
  }

  // A pole has the turn of the piece's other end.
  function addPiece(points, a, b, picture) {
    const first = Math.atan2(...(isPole(a) ? [b[1], b[0]] : [a[1], a[0]]));
    const last = Math.atan2(...(isPole(b) ? [a[1], a[0]] : [b[1], b[0]]));
    const before = points.length > 0 ? points[points.length - 2] : first;
    const start = before + wrapped(first - before);
    const end = start + wrapped(last - start);
    turnTo(points, start, thetaOf(a));
    divide(points, a, start, b, end, picture, 0);
    points.push(end, thetaOf(b));
  }

  function divide(points, a, turnA, b, turnB, picture, depth) {
    const thetaA = thetaOf(a);
    const thetaB = thetaOf(b);
    const step = Math.abs(turnB - turnA);
    if (depth >= MostDepth || (Math.abs(thetaB - thetaA) < 1e-7 && step < 1e-7)) {
      addTurn(points, thetaA, turnA, thetaB, turnB);
      return;
    }
    if (picture.isOutside(thetaA) && picture.isOutside(thetaB) && step < OutsideStep &&
        Math.abs(thetaB - thetaA) < OutsideStep)
      return;
    const middle = unit([a[0] + b[0], a[1] + b[1], a[2] + b[2]]);
    const turnOf = (d) => (isPole(d) ? turnA : turnA + wrapped(Math.atan2(d[1], d[0]) - turnA));
    const turn = turnOf(middle);
    const isSmall = step < 1 || (!picture.isBand && Math.max(thetaA, thetaB) < Pi / 2);
    const isFlat = isSmall && Math.abs(thetaB - thetaA) < 1 && [
      middle,
      unit([3 * a[0] + b[0], 3 * a[1] + b[1], 3 * a[2] + b[2]]),
      unit([a[0] + 3 * b[0], a[1] + 3 * b[1], a[2] + 3 * b[2]]),
    ].every((d) => distance(
      picture.place(turnOf(d), thetaOf(d)), picture.place(turnA, thetaA),
      picture.place(turnB, thetaB)) < 0.7 * LargestError);
    if (isFlat) return;
    divide(points, a, turnA, middle, turn, picture, depth + 1);
    points.push(turn, thetaOf(middle));
    divide(points, middle, turn, b, turnB, picture, depth + 1);
  }

  // To a point with the last one's theta: where they are at a pole, turns may differ.
  function turnTo(points, turn, theta) {
    if (points.length > 0) addTurn(points, theta, points[points.length - 2], theta, turn);
    points.push(turn, theta);
  }

  // What could be divided no further turns about a pole.
  function addTurn(points, thetaA, turnA, thetaB, turnB) {
    const count = Math.ceil(Math.abs(turnB - turnA) / OutsideStep);
    for (let i = 1; i < count; ++i)
      points.push(turnA + ((turnB - turnA) * i) / count, thetaA + ((thetaB - thetaA) * i) / count);
  }

  // Of a place from the line through two others, or from the nearer one of them.
  function distance([x, y], [ax, ay], [bx, by]) {
    const [dx, dy] = [bx - ax, by - ay];
    const square = dx * dx + dy * dy;
    const part = square > 0 ? ((x - ax) * dx + (y - ay) * dy) / square : 0;
    const at = Math.min(1, Math.max(0, part));
    return Math.hypot(x - ax - at * dx, y - ay - at * dy);
  }

  // Each edge is unrolled once, whichever cell asks: cells on both sides have the same points.
  class Arcs {
    constructor(vertices, picture) {
      this.picture = picture;
      this.vertices = [];
      for (let i = 0; i < vertices.length; i += 3)
        this.vertices.push(unit(picture.axes(
          [vertices[i] / Unit, vertices[i + 1] / Unit, vertices[i + 2] / Unit])));
      this.known = new Map();
    }

    // From the vertex of the lower number.
    of(from, to) {
      const [a, b] = from < to ? [from, to] : [to, from];
      const key = a * this.vertices.length + b;
      let arc = this.known.get(key);
      if (!arc) {
        arc = unrolled(this.vertices[a], this.vertices[b], this.picture);
        this.known.set(key, arc);
      }
      return arc;
    }

    ring(numbers) {
      const points = [];
      numbers.forEach((from, i) => {
        const to = numbers[(i + 1) % numbers.length];
        const arc = this.of(from, to);
        const count = arc.length / 2;
        const at = (k) => 2 * (from < to ? k : count - 1 - k);
        const before = points.length > 0 ? points[points.length - 2] : arc[at(0)];
        const shift = before + wrapped(arc[at(0)] - before) - arc[at(0)];
        turnTo(points, arc[at(0)] + shift, arc[at(0) + 1]);
        for (let k = 1; k < count; ++k) points.push(arc[at(k)] + shift, arc[at(k) + 1]);
      });
      return points;
    }
  }

  // Path data ---------------------------------------------------------------------------------------

  const number = (value, steps) => String(Math.round(value * steps) / steps);

  function lineData(places, steps, isClosed) {
    let data = "";
    let last = "";
    for (const [x, y] of places) {
      const text = `${number(x, steps)} ${number(y, steps)}`;
      if (text !== last) data += (data === "" ? "M" : "L") + text;
      last = text;
    }
    return isClosed && data !== "" ? data + "z" : data;
  }

  // Whole turns that bring something between these turns into the picture.
  function shiftsOf(points, picture) {
    if (!picture.isBand) return [0];
    let [least, most] = [Infinity, -Infinity];
    for (let i = 0; i < points.length; i += 2) {
      least = Math.min(least, points[i]);
      most = Math.max(most, points[i]);
    }
    const shifts = [];
    for (let k = Math.ceil((-picture.half - most) / (2 * Pi));
      k <= Math.floor((picture.half - least) / (2 * Pi)); ++k) shifts.push(2 * Pi * k);
    return shifts;
  }

  const placesOf = (points, picture, shift) => {
    const places = [];
    for (let i = 0; i < points.length; i += 2)
      places.push(picture.place(points[i] + shift, points[i + 1]));
    return places;
  };

  // What a ring encloses together with the pole, above 0 if that is on its left.
  function solidAngleOf(points, picture) {
    let sum = 0;
    for (let i = 0; i + 3 < points.length; i += 2)
      sum += picture.solidAngle(points[i + 2] - points[i], points[i + 1], points[i + 3]);
    return sum;
  }

  const isAside = (places, { width, height }) =>
    [[0, 1], [1, 1], [0, -1], [1, -1]].some(([i, sign]) => places.every((place) =>
      sign > 0 ? place[i] < -1 : place[i] > (i === 0 ? width : height) + 1));

  // The even-odd rule fills it. A ring about the axis of a band encloses what is below it, and a
  // cell that has been taken for all the rest of the sphere is turned inside out.
  function cellData([, solidAngle, ...rings], arcs, steps) {
    const { picture } = arcs;
    let data = "";
    let sum = 0;
    for (const numbers of rings) {
      const points = arcs.ring(numbers);
      sum += solidAngleOf(points, picture);
      const turns = points[points.length - 2] - points[0];
      if (picture.isBand && Math.abs(turns) > Pi)
        points.push(points[points.length - 2], Pi, points[0], Pi);
      for (const shift of shiftsOf(points, picture)) {
        const places = placesOf(points, picture, shift);
        if (!isAside(places, picture)) data += lineData(places, steps, true);
      }
    }
    const isInverse = Math.round((solidAngle - sum) / (4 * Pi)) === 1;
    return isInverse ? lineData(picture.all(), steps, true) + data : data;
  }

  function edgesData(ends, arcs, steps) {
    const { picture } = arcs;
    let data = "";
    for (let i = 0; i < ends.length; i += 2) {
      const points = arcs.of(ends[i], ends[i + 1]);
      for (const shift of shiftsOf(points, picture)) {
        const places = placesOf(points, picture, shift);
        if (!isAside(places, picture)) data += lineData(places, steps, false);
      }
    }
    return data;
  }

  // The picture -------------------------------------------------------------------------------------

  const groupsOf = (svg, prefix) => ["underlay", "map", "lines"]
    .map((name) => svg.querySelector(`#${prefix}${name}`)).filter((group) => group);

  function clip(svg, prefix, [shape, attributes]) {
    const name = "http://www.w3.org/2000/svg";
    const path = document.createElementNS(name, "clipPath");
    path.id = `${prefix}clip`;
    const cut = path.appendChild(document.createElementNS(name, shape));
    for (const [key, value] of Object.entries(attributes)) cut.setAttribute(key, value);
    svg.prepend(path);
    for (const group of groupsOf(svg, prefix)) group.setAttribute("clip-path", `url(#${path.id})`);
  }

  // Pictures as the file has them.
  const written = new WeakMap();
  const shape = ["width", "height", "viewBox"];

  function keep(svg, prefix) {
    if (written.has(svg)) return;
    const paths = groupsOf(svg, prefix).flatMap((group) => [...group.querySelectorAll("path")]);
    written.set(svg, {
      shape: shape.map((name) => [name, svg.getAttribute(name)]),
      paths: paths.map((path) => [path, path.getAttribute("d")]),
    });
  }

  function restore(svg, prefix) {
    const kept = written.get(svg);
    if (!kept) return;
    svg.querySelector("clipPath")?.remove();
    for (const group of groupsOf(svg, prefix)) group.removeAttribute("clip-path");
    for (const [name, value] of kept.shape) svg.setAttribute(name, value);
    for (const [path, data] of kept.paths) path.setAttribute("d", data);
  }

  // Redraws the paths of `svg`, whose ids start with `prefix`, of the map's `data`. `angle` is the
  // field of view in degrees, of projections that have one.
  function draw(svg, prefix, data, name, angle) {
    keep(svg, prefix);
    svg.querySelector("clipPath")?.remove();
    const picture = pictureOf(name, angle, data);
    const arcs = new Arcs(data.vertices, picture);
    const steps = 10 ** data.decimals;
    for (const cell of data.cells) {
      const path = svg.querySelector(`#${prefix}r${cell[0]}`);
      if (!path) continue;
      path.setAttribute("d", cellData(cell, arcs, steps));
      path.setAttribute("fill-rule", "evenodd");
    }
    for (const [group, lines] of [["underlay", data.underlay], ["lines", data.lines]])
      svg.querySelectorAll(`#${prefix}${group} path`).forEach((path, i) =>
        path.setAttribute("d", edgesData(lines[i], arcs, steps)));
    svg.setAttribute("width", picture.width);
    svg.setAttribute("height", picture.height);
    svg.setAttribute("viewBox", `0 0 ${picture.width} ${picture.height}`);
    clip(svg, prefix, picture.clip);
  }

  return Object.assign(draw, {
    restore,
    projectionsOf: (data) => list.filter((entry) => data.isSphere || !entry.isOfSphere),
  });
})();
