// Arranges the widgets. Each step is saved at once; the server says how the list stands then.
"use strict";

(() => {
  const main = document.querySelector("main");
  const said = document.getElementById("said");
  const failed = document.getElementById("failed");
  const words = main.dataset;
  const list = () => document.getElementById("placed");
  const itemOf = (id) => list().querySelector(`[data-id="${CSS.escape(id)}"]`);
  const fill = (text, ...parts) => parts.reduce((filled, part) => filled.replace("%@", () => part), text);

  let saidTimer = 0;
  function say(text, ...more) {
    failed.textContent = "";
    said.replaceChildren(text, ...more);
    clearTimeout(saidTimer);
    saidTimer = setTimeout(() => {
      if (!said.contains(document.activeElement)) said.replaceChildren();
    }, 12000);
  }

  function fail(text) {
    said.replaceChildren();
    failed.textContent = text;
    failed.scrollIntoView({ block: "nearest" });
  }

  /** Does one step; nothing when it failed, which is said. */
  async function change(operation, body) {
    try {
      const response = await fetch(`/api/home/${operation}`, {
        method: "POST",
        headers: { "Content-Type": "application/json" },
        body: JSON.stringify(body),
      });
      const answer = await response.json();
      if (response.ok) {
        await redraw();
        return answer;
      }
      fail(answer.error);
    } catch {
      fail(words.failed);
    }
    await redraw().catch(() => {});
    return null;
  }

  /** Shows the list as the server has it, the focus where it was. */
  async function redraw() {
    const response = await fetch("/edit", { cache: "no-cache" });
    const parsed = new DOMParser().parseFromString(await response.text(), "text/html");
    const fresh = document.importNode(parsed.getElementById("placed"), true);
    const focused = document.activeElement;
    const id = focused?.closest?.(".placed")?.dataset.id;
    const action = focused?.dataset?.action;
    // A picture that is there already stays, so that nothing flickers.
    for (const image of fresh.querySelectorAll("img")) {
      const old = [...list().querySelectorAll("img")].find(
        (one) => one.getAttribute("src") === image.getAttribute("src"));
      if (old) image.closest("picture, img").replaceWith(old.closest("picture") ?? old);
    }
    list().replaceWith(fresh);
    document.querySelector("section > .empty")?.remove();
    if (id && action) focusOn(id, action);
  }

  const focusOn = (id, action) => itemOf(id)?.querySelector(`[data-action="${action}"]`)?.focus();

  async function move(item, position) {
    const { id, name } = item.dataset;
    if (await change("move", { id, position })) {
      say(fill(words.moved, name, String(position + 1)));
    }
  }

  async function remove(item) {
    const { id, name } = item.dataset;
    const index = [...list().children].indexOf(item);
    let widget = null;
    try {
      const home = await (await fetch("/api/home", { cache: "no-cache" })).json();
      widget = home.widgets.find((one) => one.id === id);
    } catch {
      // Said when the step itself fails.
    }
    if (!(await change("remove", { id }))) return;
    const neighbour = list().children[Math.min(index, list().children.length - 1)];
    (neighbour?.querySelector('[data-action="remove"]') ?? document.getElementById("placed-title")).focus();
    const undo = document.createElement("button");
    undo.type = "button";
    undo.textContent = words.undo;
    undo.addEventListener("click", async () => {
      const { version, isPlaceholder, ...given } = widget;
      if (await change("add", { ...given, position: index })) {
        say(fill(words.added, name));
        focusOn(id, "remove");
      }
    });
    say(fill(words.removed, name), ...(widget ? [undo] : []));
  }

  async function add(button) {
    const { kind, family, name } = button.dataset;
    const answer = await change("add", { kind, family });
    if (!answer) return;
    say(fill(words.added, name));
    itemOf(answer.id)?.scrollIntoView({ block: "nearest", behavior: "auto" });
    focusOn(answer.id, "remove");
  }

  main.addEventListener("click", (event) => {
    const button = event.target.closest("button[data-action]");
    if (!button || button.getAttribute("aria-disabled") === "true") return;
    const item = button.closest(".placed");
    const index = item ? [...list().children].indexOf(item) : -1;
    switch (button.dataset.action) {
      case "up":
        return move(item, index - 1);
      case "down":
        return move(item, index + 1);
      case "remove":
        return remove(item);
      case "add":
        return add(button);
      case "place":
        return choosePlace(item);
      case "cancel":
        return dialog.close();
    }
  });

  main.addEventListener("change", async (event) => {
    if (event.target.dataset.action !== "theme") return;
    const id = event.target.closest(".placed").dataset.id;
    if (await change("set", { id, theme: event.target.value })) say(words.saved);
  });

  // Dragging by the grip.

  main.addEventListener("pointerdown", (event) => {
    const grip = event.target.closest(".grip");
    if (!grip || event.button !== 0) return;
    event.preventDefault();
    const item = grip.closest(".placed");
    const before = [...list().children].indexOf(item);
    item.classList.add("is-held");
    const onMove = (moved) => {
      const others = [...list().children].filter((one) => one !== item);
      const next = others.find((one) => {
        const box = one.getBoundingClientRect();
        return moved.clientY < box.top + box.height / 2;
      });
      if (next !== item.nextElementSibling) list().insertBefore(item, next ?? null);
    };
    const onEnd = (ended) => {
      for (const [type, listener] of listeners) document.removeEventListener(type, listener);
      item.classList.remove("is-held");
      const after = [...list().children].indexOf(item);
      if (after === before) return;
      if (ended.type === "pointercancel") redraw();
      else move(item, after);
    };
    // On the document: a grip that is moved with its item loses the capture of the pointer.
    const listeners = [["pointermove", onMove], ["pointerup", onEnd], ["pointercancel", onEnd]];
    for (const [type, listener] of listeners) document.addEventListener(type, listener);
  });

  // The choice of a place, searched as one types.

  const dialog = document.getElementById("places");
  const search = document.getElementById("places-search");
  const options = document.getElementById("places-list");
  const message = document.getElementById("places-message");
  let placeOf = null;
  let asked = 0;
  let typing = 0;

  function choosePlace(item) {
    placeOf = item.dataset.id;
    search.value = "";
    options.replaceChildren();
    dialog.showModal();
    search.focus();
    find();
  }

  async function placesFor(term, number) {
    for (let tries = 0; tries < 100 && number === asked; ++tries) {
      const response = await fetch(`/api/places?q=${encodeURIComponent(term)}`, { cache: "no-store" });
      const answer = await response.json();
      if (response.status === 200) return answer;
      if (!response.ok) throw new Error(answer.error);
      await new Promise((later) => setTimeout(later, 50));
    }
    return null;
  }

  async function find() {
    const number = ++asked;
    const term = search.value.trim();
    message.textContent = words.searching;
    try {
      const places = await placesFor(term, number);
      if (!places || number !== asked) return;
      show(places);
      const found = options.querySelectorAll("[role=option]").length - 1;
      message.textContent =
        term === "" ? "" : found > 0 ? fill(words.found, found.toLocaleString(document.documentElement.lang)) : words.nothingFound;
    } catch {
      if (number === asked) message.textContent = words.failed;
    }
  }

  function show(places) {
    const groups = [];
    let count = 0;
    for (const section of places.sections) {
      const group = document.createElement("div");
      group.setAttribute("role", "group");
      groups.push(group);
      if (section.title) {
        group.setAttribute("aria-label", section.title);
        const title = document.createElement("div");
        title.className = "title";
        title.setAttribute("aria-hidden", "true");
        title.textContent = section.title;
        group.append(title);
      }
      for (const place of section.items) {
        const option = document.createElement("div");
        option.id = `place-${count++}`;
        option.setAttribute("role", "option");
        option.setAttribute("aria-selected", "false");
        const name = document.createElement("bdi");
        name.textContent = place.name;
        option.append(name);
        option.addEventListener("click", () => choose(place));
        option.place = place;
        group.append(option);
      }
    }
    options.replaceChildren(...groups);
    // What was searched for comes first; without a search there is one entry alone.
    const all = options.querySelectorAll("[role=option]");
    select(all[search.value.trim() !== "" && all.length > 1 ? 1 : 0]);
  }

  const selected = () => options.querySelector('[aria-selected="true"]');

  function select(option) {
    selected()?.setAttribute("aria-selected", "false");
    option?.setAttribute("aria-selected", "true");
    option?.scrollIntoView({ block: "nearest" });
    search.setAttribute("aria-activedescendant", option?.id ?? "");
  }

  async function choose(place) {
    const id = placeOf;
    dialog.close();
    const { name, latitude, longitude } = place;
    const chosen = place.isMyLocation ? null : { name, latitude, longitude };
    if (await change("set", { id, place: chosen })) say(words.saved);
    focusOn(id, "place");
  }

  search.addEventListener("input", () => {
    clearTimeout(typing);
    // What was found for an earlier text is not what Enter means now.
    ++asked;
    typing = setTimeout(find, 120);
  });

  search.addEventListener("keydown", (event) => {
    const all = [...options.querySelectorAll("[role=option]")];
    const index = all.indexOf(selected());
    switch (event.key) {
      case "ArrowDown":
        select(all[Math.min(index + 1, all.length - 1)]);
        break;
      case "ArrowUp":
        select(all[Math.max(index - 1, 0)]);
        break;
      case "Enter":
        if (selected()) choose(selected().place);
        break;
      case "Escape":
        // Else the first one would merely empty the field.
        dialog.close();
        break;
      default:
        return;
    }
    event.preventDefault();
  });

  // Whatever somebody else changes, a command or another page, is shown as well.
  const events = new EventSource("/events");
  events.addEventListener("home", () => {
    if (!dialog.open && !document.querySelector(".is-held")) redraw().catch(() => {});
  });
})();
