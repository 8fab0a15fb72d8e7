// Keeps an open page up to date: the home screen at each new entry, a page to read once a minute.
"use strict";

(() => {
  const grid = document.querySelector(".grid");
  const toDocument = (html) => new DOMParser().parseFromString(html, "text/html");

  async function load(address) {
    const response = await fetch(address, { cache: "no-cache" });
    if (!response.ok) throw new Error(String(response.status));
    return toDocument(await response.text());
  }

  /** Takes an element's place once its pictures can be shown, so that nothing flickers. */
  async function swap(old, parsed) {
    const fresh = document.importNode(parsed, true);
    const images = [...fresh.querySelectorAll("img")];
    await Promise.all(images.map((image) => image.decode().catch(() => {})));
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
    const fresh = (await load(`/widget/${encodeURIComponent(id)}`)).querySelector("li");
    if (fresh) await swap(old, fresh);
  }

  /** Brings the whole grid up to date; widgets that stand as they stood are left alone. */
  async function refreshAll() {
    const parsed = await load("/");
    const fresh = parsed.querySelector(".grid");
    const main = document.querySelector("main");
    const ids = new Set([...fresh.children].map((item) => item.dataset.id));
    for (const old of [...grid.children]) {
      if (!ids.has(old.dataset.id)) old.remove();
    }
    grid.className = fresh.className;
    main.querySelector(".empty")?.remove();
    const empty = parsed.querySelector(".empty");
    if (empty) main.append(document.importNode(empty, true));
    const swaps = [];
    [...fresh.children].forEach((item, index) => {
      let shown = itemOf(grid, item.dataset.id);
      const place = grid.children[index] ?? null;
      if (!shown) {
        shown = document.importNode(item, true);
        grid.insertBefore(shown, place);
        return;
      }
      if (shown !== place) grid.insertBefore(shown, place);
      if (shown.outerHTML !== item.outerHTML) swaps.push(swap(shown, item));
    });
    await Promise.all(swaps);
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
    const fresh = await load(location.href);
    const parsed = fresh.querySelector("main");
    if (parsed.innerHTML === main.innerHTML) return;
    const hasFocus = main.contains(document.activeElement);
    document.title = fresh.title;
    document.body.className = fresh.body.className;
    main.dataset.refresh = parsed.dataset.refresh ?? "";
    main.replaceChildren(...document.importNode(parsed, true).childNodes);
    if (hasFocus) main.querySelector("a")?.focus({ preventScroll: true });
  }
  const next = () => {
    const wait = Number(main.dataset.refresh);
    if (wait) setTimeout(() => inOrder(refreshPage).then(next), wait * 1000);
  };
  document.addEventListener("visibilitychange", () => inOrder(refreshPage));
  next();
})();
