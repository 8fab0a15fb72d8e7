import { chromium } from "playwright-core";
import { readFileSync } from "node:fs";
const base = process.argv[2]; const out = process.argv[3]; const pages = process.argv.slice(4);
const b = await chromium.launch({ executablePath: "/usr/bin/chromium", args: ["--no-sandbox","--disable-gpu","--disable-quic","--no-first-run","--disable-background-networking","--disable-component-update","--disable-sync"] });
const axe = readFileSync("node_modules/axe-core/axe.min.js","utf8");
for (const scheme of (process.env.SCHEMES||"dark light").split(" ")) for (const width of (process.env.WIDTHS||"390 768 1280").split(" ").map(Number)) {
  const c = await b.newContext({ viewport: { width, height: width < 500 ? 844 : 900 }, colorScheme: scheme, bypassCSP: true });
  const p = await c.newPage();
  p.on("console", m => console.log("console", m.type(), m.text())); p.on("pageerror", e => console.log("error", e.message));
  for (const page of pages) {
    await p.goto(base + page, { waitUntil: "load" }); await p.waitForTimeout(400);
    await p.screenshot({ path: `${out}/${page.replace(/[^a-z]+/g,"_")}-${width}-${scheme}.png`, fullPage: true });
    await p.evaluate(axe);
    const r = await p.evaluate(() => axe.run());
    for (const v of r.violations) console.log(page, width, scheme, v.id, v.help, v.nodes.slice(0,3).map(n => n.html.slice(0,140) + " :: " + n.failureSummary.slice(0,200)).join("\n   "));
  }
  await c.close();
}
await b.close();
