// The page of a shot in a browser: hover, click, search, zoom, keys, both projections, many regions.
// Pictures of it are left in LUMIVANE_PICTURES to be looked at.

import assert from "node:assert/strict";
import { execFileSync } from "node:child_process";
import { mkdtempSync, readFileSync, rmSync, writeFileSync } from "node:fs";
import { tmpdir } from "node:os";
import { join } from "node:path";
import { after, before, test } from "node:test";
import { pathToFileURL } from "node:url";

import { chromium } from "playwright-core";

const { LUMIVANE_PROGRAM, LUMIVANE_BIG_PAGE, LUMIVANE_SCENES, LUMIVANE_CHROMIUM, LUMIVANE_PICTURES } =
  process.env;
const Size = { width: 1280, height: 800 };
const Timeout = 60000;

let folder;
let browser;

const lumivane = (...args) =>
  execFileSync(LUMIVANE_PROGRAM, args, { stdio: ["ignore", "ignore", "inherit"] });
const inFolder = (name) => join(folder, name);
const picture = (name) => join(LUMIVANE_PICTURES, `page-${name}.png`);

before(async () => {
  folder = mkdtempSync(join(tmpdir(), "lumivane-page-"));
  const room = ["shot", join(LUMIVANE_SCENES, "room.json"), "--eye=0.35,2.137,1.6"];
  lumivane(...room, "--html", inFolder("room.html"), "--html-both", "--visible", inFolder("room.csv"));
  lumivane(...room, "--html", inFolder("one.html"), "--style", "outline");
  lumivane(...room, "--html", inFolder("half.html"), "--style", "half");
  browser = await chromium.launch({
    executablePath: LUMIVANE_CHROMIUM,
    args: ["--no-sandbox", "--disable-gpu", "--disable-quic"],
  });
});

after(async () => {
  await browser?.close();
  rmSync(folder, { recursive: true, force: true });
});

// Opens a page and fails the test if it reports an error or asks for anything but itself.
async function open(t, file, options = {}) {
  const context = await browser.newContext({ viewport: Size, ...options });
  context.setDefaultTimeout(Timeout);
  t.after(() => context.close());
  const page = await context.newPage();
  const faults = [];
  page.on("pageerror", (error) => faults.push(error.message));
  page.on("console", (message) => message.type() === "error" && faults.push(message.text()));
  page.on("request", (request) => {
    if (!request.url().startsWith("file:") && !request.url().startsWith("data:"))
      faults.push(request.url());
  });
  await page.goto(pathToFileURL(inFolder(file)).href);
  t.after(() => assert.deepEqual(faults, []));
  return page;
}

const status = (page) => page.locator("#status").textContent();
const marks = (page) => page.locator("#marks").evaluate((style) => style.textContent);
const rowNames = (page) => page.locator("#shown td:first-child").allTextContents();
const selectedRow = (page) => page.locator("#shown tr.selected td:first-child");
const zoomOf = async (page) => Number.parseInt(await page.locator("#zoom").textContent(), 10);

// The number of the object with an id, as the page's data has it.
const numberOf = (page, id) => page.evaluate((wanted) =>
  JSON.parse(document.getElementById("data").textContent)
    .pictures[0].rows.find((row) => row[1] === wanted)[0], id);

// A place in the window where a region of the object is on top.
async function placeOf(page, id) {
  const place = await page.evaluate((number) => {
    const svg = document.querySelector("#stage svg:not([hidden])");
    for (const path of svg.querySelectorAll(`path[data-region].o${number}`)) {
      const box = path.getBoundingClientRect();
      for (let i = 1; i < 10; ++i) {
        for (let k = 1; k < 10; ++k) {
          const x = box.left + (box.width * i) / 10;
          const y = box.top + (box.height * k) / 10;
          const top = document.elementFromPoint(x, y);
          if (top && top.classList.contains(`o${number}`)) return { x, y };
        }
      }
    }
    return null;
  }, await numberOf(page, id));
  assert.ok(place, `${id} is nowhere on top`);
  return place;
}

// The fill that is painted at a place.
const fillAt = (page, { x, y }) => page.evaluate(([left, top]) =>
  getComputedStyle(document.elementFromPoint(left, top)).fill, [x, y]);
const colorOf = (page, name) => page.evaluate((variable) => {
  const probe = document.body.appendChild(document.createElement("i"));
  probe.style.color = `var(--${variable})`;
  const color = getComputedStyle(probe).color;
  probe.remove();
  return color;
}, name);

const frame = (page) => page.evaluate(() => new Promise((done) =>
  requestAnimationFrame(() => requestAnimationFrame(done))));

test("the table holds the objects with their view factors, greatest first", async (t) => {
  const page = await open(t, "room.html");
  const lines = readFileSync(inFolder("room.csv"), "utf-8").trim().split("\n").map((line) => line.split(","));
  const column = (name) => lines[0].indexOf(name);
  const expected = lines.filter((line) => line[column("kind")] === "object")
    .map((line) => [line[column("id")], Number(line[column("view_factor")])])
    .sort((a, b) => b[1] - a[1]);
  assert.ok(expected.length > 10);
  const names = await rowNames(page);
  const factors = await page.locator("#shown td.factor").allTextContents();
  const shown = names.map((name, i) => [name, factors[i]]).filter(([name]) => name !== "open (sky)");
  assert.deepEqual(shown, expected.map(([id, factor]) => [id, factor.toFixed(5)]));
  assert.match(await page.locator("#sum").textContent(), /view factor 1\.00000, 6\.2832 sr/);
});

test("pointing at an object in the picture marks it there and in the table", async (t) => {
  const page = await open(t, "room.html");
  const place = await placeOf(page, "rug");
  const plain = await fillAt(page, place);
  await page.mouse.move(place.x, place.y);
  await page.locator("#shown tr.hovered td:first-child", { hasText: "rug" }).waitFor();
  assert.equal(await fillAt(page, place), await colorOf(page, "hovered"));
  assert.match(await status(page), /^rug, face \d+, region \d+: view factor 0\.\d{5}/);
  await page.mouse.move(5, 5);
  await frame(page);
  assert.equal(await page.locator("#shown tr.hovered").count(), 0);
  assert.equal(await fillAt(page, place), plain);
});

test("pointing at a row marks the object in the picture", async (t) => {
  const page = await open(t, "room.html");
  const place = await placeOf(page, "sofa");
  await page.locator("#shown td:first-child", { hasText: "sofa" }).hover();
  await page.locator("#shown tr.hovered").waitFor();
  assert.equal(await fillAt(page, place), await colorOf(page, "hovered"));
});

test("a click keeps an object chosen, and beside all objects lets it go", async (t) => {
  const page = await open(t, "room.html");
  const place = await placeOf(page, "sofa");
  await page.mouse.click(place.x, place.y);
  await page.mouse.move(5, 5);
  await selectedRow(page).waitFor();
  assert.equal(await selectedRow(page).textContent(), "sofa");
  assert.equal(await fillAt(page, place), await colorOf(page, "selected"));
  assert.match(await page.locator("#announced").textContent(), /^sofa: view factor/);
  const stage = await page.locator("#stage").boundingBox();
  await page.mouse.click(stage.x + 3, stage.y + 3);
  await frame(page);
  assert.equal(await marks(page), "");
  assert.equal(await selectedRow(page).count(), 0);
});

test("a click on a row chooses the object", async (t) => {
  const page = await open(t, "room.html");
  await page.locator("#shown td:first-child", { hasText: "rug" }).click();
  await selectedRow(page).waitFor();
  const place = await placeOf(page, "rug");
  assert.equal(await fillAt(page, place), await colorOf(page, "selected"));
});

test("search leaves the rows whose id holds the text, whatever its case", async (t) => {
  const page = await open(t, "room.html");
  await page.keyboard.press("/");
  await page.keyboard.type("CHAIR");
  assert.deepEqual((await rowNames(page)).sort(), ["chair one", "chair two"]);
  assert.equal(await page.locator("#found").textContent(), "2 of 19");
  await page.keyboard.press("Enter");
  await selectedRow(page).waitFor();
  assert.equal(await selectedRow(page).textContent(), "chair one");
  await page.locator("#search").fill("no such object");
  assert.deepEqual(await rowNames(page), []);
  await page.locator("#search").press("Escape");
  assert.equal((await rowNames(page)).length, 20);
});

test("keys alone choose, zoom to and let go of objects", async (t) => {
  const page = await open(t, "room.html");
  await page.locator("#rows").focus();
  await page.keyboard.press("ArrowDown");
  await page.keyboard.press("ArrowDown");
  await selectedRow(page).waitFor();
  const second = (await rowNames(page))[1];
  assert.equal(await selectedRow(page).textContent(), second);
  const active = await page.locator("#rows").getAttribute("aria-activedescendant");
  assert.equal(await page.locator(`#${active}`).getAttribute("aria-selected"), "true");
  await page.keyboard.press("End");
  await frame(page);
  assert.equal(await selectedRow(page).textContent(), (await rowNames(page)).at(-1));
  await page.keyboard.press("Home");
  await page.keyboard.press("PageDown");
  await page.keyboard.press("ArrowUp");
  await page.keyboard.press("Enter");
  await frame(page);
  assert.ok((await zoomOf(page)) > 100);
  await page.keyboard.press("Escape");
  await frame(page);
  assert.equal(await selectedRow(page).count(), 0);
  await page.keyboard.press("0");
  assert.equal(await zoomOf(page), 100);
});

test("everything that acts can be reached by the tabulator", async (t) => {
  const page = await open(t, "room.html");
  const reached = [];
  for (let i = 0; i < 12; ++i) {
    await page.keyboard.press("Tab");
    reached.push(await page.evaluate(() => document.activeElement.id ||
      document.activeElement.value || document.activeElement.textContent));
  }
  for (const name of ["radial", "zoom-out", "zoom-in", "zoom-reset", "stage", "search", "rows",
                      "Object", "View factor"])
    assert.ok(reached.includes(name), `${name} is not among ${reached.join(", ")}`);
});

test("the wheel zooms around the pointer, dragging moves, and neither chooses", async (t) => {
  const page = await open(t, "room.html");
  const place = await placeOf(page, "sofa");
  const under = ({ x, y }) => page.evaluate(([left, top]) =>
    document.elementFromPoint(left, top).getAttribute("data-object"), [x, y]);
  await page.mouse.move(place.x, place.y);
  for (let i = 0; i < 5; ++i) await page.mouse.wheel(0, -100);
  await frame(page);
  assert.ok((await zoomOf(page)) > 250);
  assert.equal(await under(place), "sofa");
  await page.mouse.down();
  await page.mouse.move(place.x + 60, place.y + 40, { steps: 4 });
  await page.mouse.up();
  await frame(page);
  assert.equal(await under({ x: place.x + 60, y: place.y + 40 }), "sofa");
  assert.equal(await selectedRow(page).count(), 0);
  await page.locator("#zoom-reset").click();
  assert.equal(await zoomOf(page), 100);
  await page.locator("#zoom-in").click();
  await page.locator("#zoom-in").click();
  await page.locator("#zoom-out").click();
  assert.equal(await zoomOf(page), 150);
});

test("arrow keys move the zoomed picture", async (t) => {
  const page = await open(t, "room.html");
  await page.locator("#stage").focus();
  await page.keyboard.press("+");
  const left = () => page.evaluate(() =>
    document.querySelector("#stage svg").getBoundingClientRect().left);
  const before_ = await left();
  await page.keyboard.press("ArrowRight");
  assert.equal(Math.round(before_ - (await left())), 50);
});

test("the other projection has its picture and its numbers, and the choice stays", async (t) => {
  const page = await open(t, "room.html");
  const place = await placeOf(page, "sofa");
  await page.mouse.click(place.x, place.y);
  const radial = await page.locator("#shown tr.selected").innerText();
  await page.getByLabel("square").check();
  await frame(page);
  assert.equal(await page.locator("#stage svg:not([hidden])").count(), 1);
  assert.equal(await page.locator("#stage svg:not([hidden]) g[id='p2-shot']").count(), 1);
  assert.equal(await selectedRow(page).textContent(), "sofa");
  const square = await page.locator("#shown tr.selected").innerText();
  assert.notEqual(square, radial);
  const factor = (text) => Number(text.split("\t")[1]);
  assert.ok(Math.abs(factor(square) - factor(radial)) < 0.002, `${square} and ${radial}`);
  const there = await placeOf(page, "sofa");
  assert.equal(await fillAt(page, there), await colorOf(page, "selected"));
  await page.screenshot({ path: picture("square") });
});

test("a page of one shot offers no switch, and outlines can be pointed at inside", async (t) => {
  const page = await open(t, "one.html");
  assert.equal(await page.locator("#projections").isVisible(), false);
  const place = await placeOf(page, "rug");
  await page.mouse.move(place.x, place.y);
  await page.locator("#shown tr.hovered td:first-child", { hasText: "rug" }).waitFor();
  await page.screenshot({ path: picture("outline") });
});

test("half transparent regions are marked as well", async (t) => {
  const page = await open(t, "half.html");
  const place = await placeOf(page, "sofa");
  await page.mouse.click(place.x, place.y);
  await selectedRow(page).waitFor();
  assert.equal(await fillAt(page, place), await colorOf(page, "selected"));
});

test("columns sort both ways", async (t) => {
  const page = await open(t, "room.html");
  await page.getByRole("button", { name: "Object" }).click();
  const names = (await rowNames(page)).filter((name) => name !== "open (sky)");
  assert.deepEqual(names, names.slice().sort());
  assert.equal(await page.locator("th[data-column=id]").getAttribute("aria-sort"), "ascending");
  await page.getByRole("button", { name: "Object" }).click();
  assert.deepEqual((await rowNames(page)).filter((name) => name !== "open (sky)"), names.reverse());
});

// The page of a map in other projections ---------------------------------------------------------------

const radians = (degrees) => (degrees * Math.PI) / 180;

// What is known of a projection: the direction (x right, y up, z forward) at a place of its picture,
// from -1 to 1 in both axes and y upwards, or null outside; and width by height. Written down anew,
// not taken from the page.
function inverseOf(name, angle, isSphere) {
  const disc = (law) => (u, v) => {
    const r = Math.hypot(u, v);
    if (r >= 1 || r === 0) return null;
    const t = law(r);
    return [(Math.sin(t) * u) / r, (Math.sin(t) * v) / r, Math.cos(t)];
  };
  const sphere = (azimuth, elevation) => [
    Math.cos(elevation) * Math.sin(azimuth), Math.sin(elevation),
    Math.cos(elevation) * Math.cos(azimuth)];
  const half = isSphere && name !== "equirectangular-half" ? Math.PI : Math.PI / 2;
  const most = Math.tan(radians(angle) / 2);
  const inside = (u, v, d) => (Math.abs(u) < 1 && Math.abs(v) < 1 ? d : null);
  const bands = (u, v) => inside(u, v, sphere(half * u, (Math.PI / 2) * v));
  return {
    fisheye: disc((r) => Math.asin(r)),
    equidistant: disc((r) => (r * Math.PI) / 2),
    equisolid: disc((r) => 2 * Math.asin(r * Math.SQRT1_2)),
    stereographic: disc((r) => 2 * Math.atan(r)),
    equirectangular: bands,
    "equirectangular-half": bands,
    cylindrical: (u, v) => inside(u, v, sphere(half * u, Math.atan(v * most))),
    perspective: (u, v) => inside(u, v, [most * u, (most * v) / 1.5, 1]),
  }[name];
}

// Where a direction lies in the picture of the whole sphere that the program has drawn.
function placeOnSphere([x, y, z]) {
  const length = Math.hypot(x, y, z);
  return [Math.atan2(x, z) / Math.PI, Math.asin(y / length) / (Math.PI / 2)];
}

// What lies at places of the page's picture, which are from -1 to 1 in the box of the picture
// without its margins: for each the region there, and those 1.5 units of the drawing around it.
const regionsAt = (page, places) => page.evaluate((list) => {
  const svg = document.querySelector("#stage svg:not([hidden])");
  const matrix = svg.getScreenCTM();
  const { width, height } = svg.viewBox.baseVal;
  const cut = svg.querySelector("clipPath > *")?.getBBox();
  const box = cut ?? { x: width / 2 - width / 2 / 1.02, y: height / 2 - height / 2 / 1.02,
                       width: width / 1.02, height: height / 1.02 };
  const at = (x, y) => {
    const point = new DOMPoint(x, y).matrixTransform(matrix);
    return document.elementFromPoint(point.x, point.y)?.getAttribute("id") ?? "";
  };
  return list.map(([u, v]) => {
    const x = box.x + (box.width * (u + 1)) / 2;
    const y = box.y + (box.height * (1 - v)) / 2;
    const around = [];
    for (let i = -1; i <= 1; ++i) for (let k = -1; k <= 1; ++k) around.push(at(x + 1.5 * i, y + 1.5 * k));
    return { here: at(x, y), around };
  });
}, places);

const choose = (page, name) => page.locator("#projection").selectOption(name);

const Projections = ["fisheye", "equidistant", "equisolid", "stereographic", "equirectangular-half",
                     "cylindrical", "perspective"];
const Rows = 25; // of places that are looked at, and columns
const Maps = {
  street: ["street.json", "--eye=-5.3,-1.37,3.4"],
  level: ["room.json", "--eye=0.35,2.137,1.6", "--forward=1,0.2,0.1"],
  // All is symmetrical: edges run through both poles of every axis.
  axes: ["small.json", "--eye=0,0,0.5", "--forward=1,0,0"],
};

for (const [title, [scene, ...view]] of Object.entries(Maps)) {
  test(`the map of ${title} is the same in every projection`, async (t) => {
    const file = `sphere-${title}.html`;
    lumivane("view", join(LUMIVANE_SCENES, scene), ...view, "--field", "sphere", "--projection",
             "equirectangular", "--color-by", "object", "--html", inFolder(file));
    const truth = await open(t, file);
    const page = await open(t, file);
    assert.equal(await page.locator("#projection").inputValue(), "equirectangular");
    for (const name of Projections) {
      await choose(page, name);
      const inverse = inverseOf(name, 90, true);
      const places = [];
      const there = [];
      for (let i = 0; i < Rows; ++i) {
        for (let k = 0; k < Rows; ++k) {
          const place = [(2 * i + 1.13) / Rows - 1, (2 * k + 0.87) / Rows - 1];
          const direction = inverse(...place);
          if (!direction) continue;
          places.push(place);
          there.push(placeOnSphere(direction));
        }
      }
      assert.ok(places.length > 0.7 * Rows * Rows);
      const drawn = await regionsAt(page, places);
      const right = await regionsAt(truth, there);
      let different = 0;
      const wrong = places.filter((_, i) => {
        if (drawn[i].here !== right[i].here) ++different;
        assert.match(right[i].here, /^p1-r\d+$/);
        // Where cells are smaller than a pixel, places beside each other say nothing.
        if ([drawn[i], right[i]].some(({ around }) => new Set(around).size > 4)) return false;
        return !drawn[i].around.includes(right[i].here) && !right[i].around.includes(drawn[i].here);
      });
      assert.deepEqual(wrong, [], `${name}: wrong at these places`);
      assert.ok(different < 0.1 * places.length, `${name}: ${different} of ${places.length} are edges`);
      await page.screenshot({ path: picture(`${title}-${name}`) });
    }
  });
}

test("a map of a hemisphere is redrawn as the program draws it", async (t) => {
  const view = ["view", join(LUMIVANE_SCENES, "street.json"), "--eye=-5.3,-1.37,3.4",
                "--color-by", "object"];
  const names = ["fisheye", "equidistant", "equirectangular"];
  for (const name of names)
    lumivane(...view, "--projection", name, "--html", inFolder(`${name}.html`));
  const page = await open(t, "fisheye.html");
  assert.deepEqual(await page.locator("#projection option").evaluateAll((options) =>
    options.map((option) => option.value)),
  ["fisheye", "equidistant", "equisolid", "stereographic", "equirectangular", "cylindrical", "perspective"]);
  const places = [];
  for (let i = 0; i < 40; ++i)
    for (let k = 0; k < 40; ++k) places.push([(2 * i + 1.1) / 40 - 1, (2 * k + 0.9) / 40 - 1]);
  for (const name of names.slice(1)) {
    const truth = await open(t, `${name}.html`);
    await choose(page, name);
    const inside = places.filter(([u, v]) => inverseOf(name, 90, false)(u, v));
    const drawn = await regionsAt(page, inside);
    const right = await regionsAt(truth, inside);
    const wrong = inside.filter((_, i) => !drawn[i].around.includes(right[i].here));
    assert.deepEqual(wrong, [], name);
    assert.ok(drawn.filter(({ here }, i) => here === right[i].here).length > 0.98 * inside.length);
  }
  const original = () => page.locator("#stage svg").evaluate((svg) => svg.getAttribute("viewBox") +
    [...svg.querySelectorAll("path")].map((path) => path.getAttribute("d")).join());
  const fresh = await open(t, "fisheye.html");
  await choose(page, "fisheye");
  assert.equal(await original(), await fresh.locator("#stage svg").evaluate((svg) =>
    svg.getAttribute("viewBox") +
    [...svg.querySelectorAll("path")].map((path) => path.getAttribute("d")).join()));
});

test("lines that are straight stay straight in perspective, and its field of view can be set",
     async (t) => {
  lumivane("view", join(LUMIVANE_SCENES, "street.json"), "--eye=-5.3,-1.37,3.4", "--html",
           inFolder("perspective.html"));
  const page = await open(t, "perspective.html");
  assert.equal(await page.locator("#angle").isVisible(), false);
  await choose(page, "perspective");
  // Corners within the picture, and how far the farthest is off the line through its neighbours.
  const corners = () => page.locator("#p1-lines path").first().evaluate((path) => {
    const { width, height } = path.ownerSVGElement.viewBox.baseVal;
    const isInside = ([x, y]) => x > 0 && x < width && y > 0 && y < height;
    let [count, most] = [0, 0];
    for (const line of path.getAttribute("d").split("M").slice(1)) {
      const places = line.split("L").map((text) => text.split(" ").map(Number));
      places.slice(1, -1).forEach(([x, y], i) => {
        const [[ax, ay], [bx, by]] = [places[i], places[i + 2]];
        if (![[x, y], [ax, ay], [bx, by]].every(isInside)) return;
        const off = Math.abs((bx - ax) * (y - ay) - (by - ay) * (x - ax)) /
          Math.hypot(bx - ax, by - ay);
        [count, most] = [count + 1, Math.max(most, off)];
      });
    }
    return { count, most };
  });
  const straight = await corners();
  assert.ok(straight.most < 0.02, `a corner is ${straight.most} off`);
  await choose(page, "equidistant");
  const bent = await corners();
  assert.ok(bent.most > 0.1 && bent.count > 2 * straight.count, JSON.stringify([bent, straight]));
  await choose(page, "perspective");
  for (const angle of [40, 140]) {
    await page.locator("#field-of-view").fill(String(angle));
    await page.locator("#field-of-view").dispatchEvent("input");
    await frame(page);
    assert.equal(await page.locator("#angle output").textContent(), `${angle}\u00b0`);
    await page.screenshot({ path: picture(`perspective-${angle}`) });
  }
});

test("what is marked stays marked in another projection", async (t) => {
  lumivane("view", join(LUMIVANE_SCENES, "room.json"), "--eye=0.35,2.137,1.6", "--html",
           inFolder("marked.html"));
  const page = await open(t, "marked.html");
  await page.locator("#shown td:first-child", { hasText: "sofa" }).click();
  await selectedRow(page).waitFor();
  await choose(page, "stereographic");
  const place = await placeOf(page, "sofa");
  assert.equal(await fillAt(page, place), await colorOf(page, "selected"));
  await page.keyboard.press("Escape");
});

// Where a shot is wrong --------------------------------------------------------------------------------

// A shot of a scene with its audit.
function auditedPage(scene, name, ...view) {
  // Reports of cyclic overlaps belong nowhere but there.
  execFileSync(LUMIVANE_PROGRAM, ["shot", join(LUMIVANE_SCENES, scene), ...view, "--audit", "--html",
    inFolder(name)], { stdio: "ignore", cwd: folder });
}

// A place of the window where an object is shown and another one is seen.
const wrongPlace = async (page, shown, seen) => page.evaluate(([first, second]) => {
  for (const path of document.querySelectorAll(
    `#stage svg:not([hidden]) [data-shown="${first}"][data-seen="${second}"]`)) {
    const box = path.getBoundingClientRect();
    for (let i = 1; i < 20; ++i) {
      for (let k = 1; k < 20; ++k) {
        const [x, y] = [box.left + (box.width * i) / 20, box.top + (box.height * k) / 20];
        const isInside = [[0, 0], [3, 0], [-3, 0], [0, 3], [0, -3]].every(([dx, dy]) =>
          document.elementFromPoint(x + dx, y + dy) === path);
        if (isInside) return { x, y };
      }
    }
  }
  return null;
}, [await numberOf(page, shown), await numberOf(page, seen)]);

test("where a shot is wrong it is shaded, and pointing there says what is seen", async (t) => {
  auditedPage("street.json", "wrong.html", "--eye=-5.3,-1.37,3.4");
  const page = await open(t, "wrong.html");
  await page.screenshot({ path: picture("wrong") });
  assert.equal((await page.locator("#wrong-choice").textContent()).trim(), "Wrong parts:");
  assert.equal(await page.locator("#wrong-share").textContent(), "1.31 % of what the picture covers");
  assert.match(await page.locator("#wrong-more").textContent(),
    /most of it at house right 03\. Strips along edges, too narrow to be shaded: 0\.01\d+ %\.$/);
  const place = await wrongPlace(page, "house right 04", "house right 03");
  assert.ok(place);
  await page.mouse.move(place.x, place.y);
  assert.equal(await status(page),
    "Wrong part: the picture shows house right 04, but house right 03 is seen here.");
  await page.locator("#shown tr.hovered td:first-child", { hasText: "house right 04" }).waitFor();
  await page.mouse.click(place.x, place.y);
  await selectedRow(page).waitFor();
  assert.equal(await selectedRow(page).textContent(), "house right 04");
});

test("shading is turned off and on by its box and by a key, and off shows what is below", async (t) => {
  auditedPage("street.json", "off.html", "--eye=-5.3,-1.37,3.4");
  const page = await open(t, "off.html");
  const box = page.getByLabel("Wrong parts:");
  assert.equal(await box.isChecked(), true);
  assert.match(await box.evaluate((input) =>
    document.getElementById(input.getAttribute("aria-describedby")).textContent), /^1\.31 %/);
  const place = await wrongPlace(page, "house right 04", "house right 03");
  await box.uncheck();
  assert.equal(await wrongPlace(page, "house right 04", "house right 03"), null);
  await page.mouse.move(place.x, place.y);
  assert.match(await status(page), /^house right 04, face \d+, region \d+: view factor .* shown wrongly on 1\.\d+ %/);
  await page.locator("#stage").focus();
  await page.keyboard.press("w");
  assert.equal(await box.isChecked(), true);
  assert.deepEqual(await wrongPlace(page, "house right 04", "house right 03"), place);
  assert.equal(await page.locator("#announced").textContent(), "Wrong parts are shaded.");
  await page.keyboard.press("/");
  await page.keyboard.type("w");
  assert.equal(await box.isChecked(), true); // typed into the search
});

test("the hatch of wrong parts is as wide at any zoom", async (t) => {
  auditedPage("street.json", "hatch.html", "--eye=-5.3,-1.37,3.4");
  const page = await open(t, "hatch.html");
  const hatch = page.locator("#p1-hatch");
  for (let i = 0; i < 3; ++i) await page.keyboard.press("+");
  await page.waitForFunction(() =>
    document.getElementById("p1-hatch").getAttribute("patternTransform").includes("scale(0.29"));
  await page.screenshot({ path: picture("wrong-near") });
  await page.keyboard.press("0");
  await page.waitForFunction(() =>
    document.getElementById("p1-hatch").getAttribute("patternTransform").includes("scale(1)"));
  assert.equal(await hatch.count(), 1);
});

test("the table has a column of wrong parts, and no number in it is cut off", async (t) => {
  auditedPage("models/delft.city.json", "roof.html", "--eye=112.89,-34.97,7.06", "--forward=0.87,-0.49,-1");
  const page = await open(t, "roof.html");
  await page.screenshot({ path: picture("wrong-roof") });
  await page.locator("th[data-column=wrong] button").click();
  assert.equal(await page.locator("th[data-column=wrong]").getAttribute("aria-sort"), "descending");
  const rows = await page.locator("#shown tr").evaluateAll((all) => all.slice(0, 3).map((row) =>
    [...row.cells].map((cell) => cell.textContent)));
  const column = await page.locator("th:not([hidden])").evaluateAll((all) =>
    all.findIndex((header) => header.dataset.column === "wrong"));
  const wrongs = rows.map((cells) => Number(cells[column]));
  assert.ok(wrongs[0] > 23 && wrongs[1] > 23 && wrongs[2] < 1, wrongs.join());
  const cut = await page.locator("#shown td:not(:first-child):not(.text)").evaluateAll((all) =>
    all.filter((cell) => cell.scrollWidth > cell.clientWidth).length);
  assert.equal(cut, 0);
});

test("of a shot that is right the page says so and has nothing to turn off", async (t) => {
  auditedPage("small.json", "right.html", "--eye=-2.6,0.35,1.9", "--forward=1,-0.06,-0.45",
              "--html-both");
  const page = await open(t, "right.html");
  await page.screenshot({ path: picture("right") });
  for (const name of ["radial", "square"]) {
    await page.getByLabel(name).check();
    assert.equal(await page.locator("#wrong-choice").isVisible(), false);
    assert.equal(await page.locator("#wrong-key").isVisible(), false);
    assert.equal(await page.locator("#wrong-share").textContent(),
      "No wrong part: the picture shows what is seen.");
    assert.match(await page.locator("#wrong-more").textContent(), /: 0\.00\d+ % of what it covers\.$/);
  }
  await page.keyboard.press("w");
  assert.equal(await page.locator("#show-wrong").isChecked(), true);
});

test("a page without an audit says nothing of wrong parts", async (t) => {
  const page = await open(t, "room.html");
  assert.equal(await page.locator("#wrong").isVisible(), false);
  assert.equal(await page.locator("th[data-column=wrong]").isVisible(), false);
});

// The page of drawings ---------------------------------------------------------------------------------

// The number of the object at places of an SVG file of `draw`, from -1 to 1 in what is drawn; of
// places by which the edge of another one passes, nothing.
const objectsInSvg = (page, places) => page.evaluate((list) => {
  const svg = document.documentElement;
  const margin = 10; // mm
  const { width, height } = svg.viewBox.baseVal;
  const matrix = svg.getScreenCTM();
  const at = (x, y) => {
    const point = new DOMPoint(x, y).matrixTransform(matrix);
    const cell = document.elementsFromPoint(point.x, point.y)
      .map((element) => element.closest("#fills > g")).find((group) => group);
    return cell ? Number(cell.id.slice(1)) : 0;
  };
  return list.map(([u, v]) => {
    const x = margin + ((width - 2 * margin) * (u + 1)) / 2;
    const y = margin + ((height - 2 * margin) * (1 - v)) / 2;
    const here = at(x, y);
    const isClear = [[1, 0], [-1, 0], [0, 1], [0, -1]].every(([i, k]) =>
      at(x + 0.5 * i, y + 0.5 * k) === here);
    return isClear ? here : null;
  });
}, places);

// The numbers of the objects at and around places of the page's picture.
const objectsInPage = async (page, places) => {
  const regions = await regionsAt(page, places);
  return page.evaluate((lists) => lists.map((ids) => ids.map((id) => {
    const element = id === "" ? null : document.getElementById(id);
    return element ? Number(/o(-?\d+)/.exec(element.getAttribute("class"))[1]) : 0;
  })), regions.map(({ here, around }) => [here, ...around]));
};

const grid = (count) => {
  const places = [];
  for (let i = 0; i < count; ++i)
    for (let k = 0; k < count; ++k)
      places.push([(2 * i + 1.13) / count - 1, (2 * k + 0.87) / count - 1]);
  return places;
};

test("the page of drawings opens as the program draws, from the eye and along parallel lines",
     async (t) => {
  const scene = join(LUMIVANE_SCENES, "street.json");
  const eye = ["--eye=-5.3,-1.37,3.4", "--target=40,0,8", "--upright", "--fov=75", "--fill=object",
               "--hidden=dashed"];
  lumivane("draw", scene, ...eye, "--html", inFolder("drawing.html"));
  const page = await open(t, "drawing.html");
  assert.deepEqual(await page.locator("#projections label").allTextContents(),
    ["the eye", "top", "bottom", "front", "back", "left", "right", "isometric"].map((s) => ` ${s}`));
  const views = { "the eye": eye, isometric: ["--parallel=isometric", "--fill=object", "--hidden=dashed"],
                  front: ["--parallel=front", "--fill=object", "--hidden=dashed"] };
  for (const [name, options] of Object.entries(views)) {
    const file = `drawing-${name.replace(" ", "-")}.svg`;
    lumivane("draw", scene, ...options, "--widths=outline=0,silhouette=0,crease=0,crossing=0,hidden=0",
             "--svg", inFolder(file));
    const truth = await open(t, file);
    await page.getByLabel(name, { exact: true }).check();
    await page.screenshot({ path: picture(`drawing-${name.replace(" ", "-")}`) });
    const places = grid(40);
    const right = await objectsInSvg(truth, places);
    const drawn = await objectsInPage(page, places);
    const clear = places.filter((_, i) => right[i] !== null);
    assert.ok(clear.length > 0.6 * places.length, `${name}: ${clear.length}`);
    assert.ok(new Set(right).size > 5);
    const wrong = places.filter((_, i) => right[i] !== null && !drawn[i].includes(right[i]));
    assert.deepEqual(wrong, [], name);
    const different = places.filter((_, i) => right[i] !== null && right[i] !== drawn[i][0]).length;
    assert.ok(different < 0.01 * clear.length, `${name}: ${different}`);
  }
  assert.equal(await page.locator("#views").isVisible(), false);
});

test("the page of drawings shows the map in every projection, with hidden lines", async (t) => {
  const [scene, ...view] = ["room.json", "--eye=0.35,2.137,1.6", "--forward=1,0.2,0.1"];
  lumivane("view", join(LUMIVANE_SCENES, scene), ...view, "--field", "sphere", "--projection",
           "equirectangular", "--html", inFolder("map-of-drawing.html"));
  lumivane("draw", join(LUMIVANE_SCENES, scene), ...view, "--projection", "equisolid", "--hidden",
           "dashed", "--fill", "brush", "--html", inFolder("drawing-room.html"));
  const truth = await open(t, "map-of-drawing.html");
  const page = await open(t, "drawing-room.html");
  assert.equal(await page.locator("#projection").inputValue(), "equisolid");
  for (const name of Projections) {
    await choose(page, name);
    await choose(truth, name);
    const angle = name === "perspective" || name === "cylindrical" ? 90 : 0;
    for (const either of angle ? [page, truth] : []) {
      await either.locator("#field-of-view").fill(String(angle));
      await either.locator("#field-of-view").dispatchEvent("input");
      await frame(either);
    }
    const places = grid(Rows);
    const inside = places.filter(([u, v]) => inverseOf(name, 90, true)(u, v));
    const drawn = await regionsAt(page, inside);
    const right = await regionsAt(truth, inside);
    const wrong = inside.filter((_, i) => new Set(right[i].around).size < 5 &&
      !drawn[i].around.includes(right[i].here) && !right[i].around.includes(drawn[i].here));
    assert.deepEqual(wrong, [], name);
    // A dashed line that is drawn lies within the picture.
    const dashed = page.locator("#p1-lines path[stroke-dasharray]");
    assert.equal(await dashed.count(), 1);
    assert.ok((await dashed.getAttribute("d")).length > 1000);
    await page.screenshot({ path: picture(`drawing-room-${name}`) });
  }
});

// What some objects of the room are.
const classNames = { "chair one": "Seat", "chair two": "Seat", rug: "Floor" };
const classTable = ["id,class", ...Object.entries(classNames).map((row) => row.join()), ""].join("\n");

for (const command of ["shot", "view"]) {
  test(`the page of ${command} has a column of classes, which sorts and is searched`, async (t) => {
    const name = `classes-${command}.html`;
    writeFileSync(inFolder("room.classes.csv"), classTable);
    lumivane(command, join(LUMIVANE_SCENES, "room.json"), "--eye=0.35,2.137,1.6",
             "--classes", inFolder("room.classes.csv"), "--html", inFolder(name));
    const page = await open(t, name);
    const cells = () => page.locator("#shown tr").evaluateAll((rows) =>
      rows.map((row) => [row.cells[0].textContent, row.cells[1].textContent]));
    for (const [id, text] of await cells())
      assert.equal(text, classNames[id] ?? "", id);
    const cut = await page.locator("#shown td:not(:first-child):not(.text)").evaluateAll((all) =>
      all.filter((cell) => cell.scrollWidth > cell.clientWidth).map((cell) => cell.textContent));
    assert.deepEqual(cut, [], "numbers have room");
    const header = page.locator("th[data-column=class]");
    await header.click();
    assert.equal(await header.getAttribute("aria-sort"), "ascending");
    const sorted = (await cells()).map(([, text]) => text);
    assert.deepEqual(sorted, sorted.slice().sort());
    await page.locator("#search").fill("seat");
    assert.deepEqual((await rowNames(page)).sort(), ["chair one", "chair two"]);
    await page.locator("#shown tr").first().hover();
    await page.locator("#shown tr.hovered").waitFor();
    assert.match(await status(page), /^chair (one|two): Seat, view factor/);
    await page.locator("#search").fill("");
    await page.screenshot({ path: picture(`classes-${command}`) });
  });
}

test("the page of a scene without classes has no column of them", async (t) => {
  const page = await open(t, "room.html");
  assert.equal(await page.locator("th[data-column=class]").isVisible(), false);
  const shown = await page.locator("th:visible").count();
  assert.equal(await page.locator("#shown tr").first().locator("td").count(), shown);
});

test("the page of a shot offers no projections", async (t) => {
  const page = await open(t, "room.html");
  assert.equal(await page.locator("#views").isVisible(), false);
});

for (const scheme of ["light", "dark"]) {
  test(`text can be read in ${scheme}`, async (t) => {
    const page = await open(t, "room.html", { colorScheme: scheme });
    const place = await placeOf(page, "sofa");
    await page.mouse.click(place.x, place.y);
    const other = await placeOf(page, "rug");
    await page.mouse.move(other.x, other.y);
    await page.locator("#shown tr.hovered").waitFor();
    await page.screenshot({ path: picture(scheme) });
    // The contrast of text to what lies under it, as the web's guidelines define it: 4.5 at least.
    const contrasts = await page.evaluate(() => {
      const parts = (color) => color.match(/[\d.]+/g).map(Number);
      const light = (color) => parts(color).slice(0, 3)
        .map((v) => v / 255).map((v) => (v <= 0.04045 ? v / 12.92 : ((v + 0.055) / 1.055) ** 2.4))
        .reduce((sum, v, i) => sum + v * [0.2126, 0.7152, 0.0722][i], 0);
      const ground = (element) => {
        for (let at = element; at; at = at.parentElement) {
          const color = getComputedStyle(at).backgroundColor;
          if (parts(color)[3] !== 0) return color;
        }
        return "rgb(255, 255, 255)";
      };
      return ["h1", "#status", "#sum", "#found", "legend", "#zoom-in", "#search",
              "#shown tr.selected td", "#shown tr.hovered td", "#shown td"].map((name) => {
        const element = document.querySelector(name);
        const [a, b] = [light(getComputedStyle(element).color), light(ground(element))];
        return [name, (Math.max(a, b) + 0.05) / (Math.min(a, b) + 0.05)];
      });
    });
    for (const [name, contrast] of contrasts) assert.ok(contrast >= 4.5, `${name}: ${contrast}`);
  });
}

test("the page of a narrow window has the table under the picture", async (t) => {
  const page = await open(t, "room.html", { viewport: { width: 420, height: 900 } });
  const stage = await page.locator("#stage").boundingBox();
  const rows = await page.locator("#rows").boundingBox();
  assert.ok(stage.height > 200 && rows.height > 150 && rows.y > stage.y + stage.height);
  assert.ok(rows.x + rows.width <= 420);
  await page.screenshot({ path: picture("narrow") });
});

test("twenty thousand regions change nothing but one rule and the rows in view", async (t) => {
  execFileSync(LUMIVANE_BIG_PAGE, [inFolder("big.html"), "20000", "2000"]);
  const page = await open(t, "big.html");
  assert.equal(await page.locator("#stage path[data-region]").count(), 20000);
  await page.evaluate(() => {
    window.changes = 0;
    new MutationObserver((list) => { window.changes += list.length; })
      .observe(document.getElementById("p1-shot"),
               { subtree: true, childList: true, attributes: true });
  });
  const place = await placeOf(page, "house-777");
  await page.mouse.move(place.x, place.y);
  await page.waitForFunction((wanted) => document.getElementById("marks").textContent
    .includes(`.o${wanted}[fill]{fill:var(--hovered)`), await numberOf(page, "house-777"));
  await page.mouse.click(place.x, place.y);
  await selectedRow(page).waitFor();
  assert.equal(await selectedRow(page).textContent(), "house-777");
  await frame(page);  // the picture is marked with the next one
  assert.equal(await fillAt(page, place), await colorOf(page, "selected"));
  assert.ok((await page.locator("#shown tr").count()) < 100);
  await page.locator("#rows").focus();
  await page.keyboard.press("End");
  await frame(page);
  assert.ok((await page.locator("#shown tr").count()) < 100);
  assert.equal(await selectedRow(page).count(), 1);
  await page.locator("#search").fill("house-1999");
  assert.deepEqual(await rowNames(page), ["house-1999"]);
  await page.locator("#zoom-in").click();
  await frame(page);
  assert.equal(await page.evaluate(() => window.changes), 0);
  await page.screenshot({ path: picture("big") });
});
