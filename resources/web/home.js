// Keeps an open page up to date: the home screen at each new entry, a page to read once a minute.
"use strict";

(() => {
  let grid = document.querySelector(".grid");
  const toDocument = (html) => new DOMParser().parseFromString(html, "text/html");

  async function load(address, mayBeGone = false) {
    const response = await fetch(address, { cache: "no-cache" });
    if (!response.ok && !(mayBeGone && response.status === 404)) throw new Error(String(response.status));
    return toDocument(await response.text());
  }

  /** Waits for the pictures of an element, so that nothing flickers when it is put in its place. */
  const shown = (element) =>
    Promise.all([...element.querySelectorAll("img")].map((image) => image.decode().catch(() => {})));

  async function swap(old, parsed) {
    const fresh = document.importNode(parsed, true);
    await shown(fresh);
    if (!old.isConnected) return;
    const links = [...old.querySelectorAll("a")];
    const focused = links.indexOf(document.activeElement);
    old.replaceWith(fresh);
    if (focused >= 0) fresh.querySelectorAll("a")[focused]?.focus({ preventScroll: true });
  }

  const itemOf = (root, id) => root.querySelector(`[data-id="${CSS.escape(id)}"]`);

  async function refreshWidget(id, version) {
    const old = itemOf(document, id);
    if (!old) return refreshAll();
    if (old.dataset.version === String(version)) return;
    const fresh = (await load(`/widget/${encodeURIComponent(id)}`)).querySelector("[data-id]");
    if (fresh) await swap(old, fresh);
  }

  /** Brings the whole grid up to date; widgets that stand as they stood are left alone. */
  async function refreshAll() {
    const response = await fetch("/api/home", { cache: "no-cache" });
    const { widgets } = await response.json();
    const isSame =
      grid.dataset.order === widgets.map((one) => `${one.id}:${one.family}`).join(" ") &&
      widgets.every((one) => itemOf(grid, one.id)?.dataset.version === String(one.version));
    if (isSame) return;
    const parsed = await load("/");
    const fresh = document.importNode(parsed.querySelector(".grid"), true);
    const focused = document.activeElement?.closest?.("[data-id]")?.dataset.id;
    for (const item of fresh.querySelectorAll("[data-id]")) {
      const old = itemOf(grid, item.dataset.id);
      if (old && old.dataset.version === item.dataset.version) item.replaceWith(old.cloneNode(true));
    }
    await shown(fresh);
    document.querySelector("main > .empty")?.remove();
    const empty = parsed.querySelector(".empty");
    if (empty) grid.after(document.importNode(empty, true));
    grid.replaceWith(fresh);
    grid = fresh;
    if (focused) itemOf(grid, focused)?.querySelector("a")?.focus({ preventScroll: true });
  }

  // One after the other: an older answer never comes over a newer one.
  let last = Promise.resolve();
  const inOrder = (work) => {
    last = last.then(work).catch(() => {});
    return last;
  };

  function listen() {
    const events = new EventSource("/events");
    // Events that came while nobody listened are lost: whoever listens asks for the state.
    events.onopen = () => inOrder(refreshAll);
    events.addEventListener("entry", (event) => {
      const { id, version } = JSON.parse(event.data);
      inOrder(() => refreshWidget(id, version));
    });
    events.addEventListener("home", () => inOrder(refreshAll));
    events.onerror = () => {
      // Only a lost connection is taken up again by the browser itself, not a refused one.
      if (events.readyState === EventSource.CLOSED) setTimeout(listen, 5000);
    };
  }

  if (grid) {
    listen();
    // A page that the browser kept comes back as it was.
    window.addEventListener("pageshow", (event) => {
      if (event.persisted) inOrder(refreshAll);
    });
    return;
  }

  const main = document.querySelector("main");
  const seconds = Number(main.dataset.refresh);
  if (!seconds) return;
  async function refreshPage() {
    if (document.hidden) return;
    // What the page was about may have been removed; then the page says so.
    const fresh = await load(location.href, true);
    const parsed = fresh.querySelector("main");
    if (parsed.innerHTML === main.innerHTML) return;
    const content = document.importNode(parsed, true);
    await shown(content);
    const hasFocus = main.contains(document.activeElement);
    document.title = fresh.title;
    document.body.className = fresh.body.className;
    main.dataset.refresh = parsed.dataset.refresh ?? "";
    main.replaceChildren(...content.childNodes);
    if (hasFocus) main.querySelector("a")?.focus({ preventScroll: true });
  }
  const next = () => {
    const wait = Number(main.dataset.refresh);
    if (wait) setTimeout(() => inOrder(refreshPage).then(next), wait * 1000);
  };
  document.addEventListener("visibilitychange", () => inOrder(refreshPage));
  next();
})();
