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
    clearSaidLater();
  }

  function clearSaidLater() {
    clearTimeout(saidTimer);
    saidTimer = setTimeout(() => {
      if (!said.contains(document.activeElement)) said.replaceChildren();
    }, 12000);
  }

  said.addEventListener("focusout", clearSaidLater);

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
        await redraw({ isAfterStep: true });
        return answer;
      }
      fail(answer.error);
    } catch {
      fail(words.failed);
    }
    await redraw({ isAfterStep: true, keepsError: true }).catch(() => {});
    return null;
  }

  async function load() {
    const response = await fetch("/edit", { cache: "no-cache" });
    if (!response.ok) throw new Error(String(response.status));
    return new DOMParser().parseFromString(await response.text(), "text/html");
  }

  // One after the other: an older answer never comes over a newer one.
  let last = Promise.resolve();
  function inOrder(work) {
    const done = last.then(work);
    last = done.catch(() => {});
    return done;
  }

  const redraw = (how) => inOrder(() => redrawNow(how));

  /** Shows the list as the server has it, the focus where it was. */
  async function redrawNow({ isAfterStep = false, keepsError = false } = {}) {
    const parsed = await load();
    if (!isAfterStep && isBusy()) return;
    if (!keepsError) showProblem(parsed);
    const fresh = document.importNode(parsed.getElementById("placed"), true);
    // A choice that is open closes with its list, so a list that stands as it stood is left alone;
    // after a step the controls may show what was refused.
    if (!isAfterStep && fresh.outerHTML === list().outerHTML) return;
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
    const empty = parsed.querySelector("section > .empty");
    if (empty) fresh.after(document.importNode(empty, true));
    if (id && action) focusOn(id, action);
  }

  /** What the server says is wrong with the file, as long as it is wrong. */
  let problemTimer = 0;
  let lastProblem = failed.textContent;
  function showProblem(parsed) {
    const problem = parsed.getElementById("failed").textContent;
    // What a step was refused for stays until the next step.
    if (problem || failed.textContent === lastProblem) {
      if (failed.textContent !== problem) failed.textContent = problem;
    }
    lastProblem = problem;
    clearTimeout(problemTimer);
    // A file that is mended and holds what is shown already is no event.
    if (problem) problemTimer = setTimeout(() => redraw().catch(() => {}), 3000);
  }

  let areThumbnailsDue = false;
  /** Shows the widgets' new pictures, and touches nothing that somebody may be using. */
  function redrawThumbnails() {
    if (areThumbnailsDue) return;
    areThumbnailsDue = true;
    inOrder(async () => {
      areThumbnailsDue = false;
      const parsed = await load();
      for (const item of parsed.querySelectorAll("#placed > [data-id]")) {
        const thumbnail = document.importNode(item.querySelector(".thumb"), true);
        const isOld = (one) => one && one.innerHTML !== thumbnail.innerHTML;
        if (!isOld(itemOf(item.dataset.id)?.querySelector(".thumb"))) continue;
        await Promise.all(
          [...thumbnail.querySelectorAll("img")].map((image) => image.decode().catch(() => {})));
        itemOf(item.dataset.id)?.querySelector(".thumb").replaceWith(thumbnail);
      }
    }).catch(() => {});
  }

  /** Takes the first of these actions that the widget has. */
  function focusOn(id, ...actions) {
    for (const action of actions) {
      const control = itemOf(id)?.querySelector(`[data-action="${action}"]`);
      if (control) return control.focus();
    }
  }

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
    // The button that had the focus is gone; a slip is mended with one more key.
    (widget ? undo : document.getElementById("placed-title")).focus();
  }

  async function add(button) {
    const { kind, family, name } = button.dataset;
    const answer = await change("add", { kind, family });
    if (!answer) return;
    say(fill(words.added, name));
    itemOf(answer.id)?.scrollIntoView({ block: "nearest", behavior: "auto" });
    focusOn(answer.id, "place", "theme");
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
    const { action } = event.target.dataset;
    if (action !== "theme" && action !== "family") return;
    const id = event.target.closest(".placed").dataset.id;
    if (await change("set", { id, [action]: event.target.value })) say(words.saved);
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
  // Enter came before the search was answered: its first place is taken when it is.
  let isEntered = false;

  function choosePlace(item) {
    placeOf = item.dataset.id;
    search.value = "";
    clearFound();
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

  /** What was found for an earlier text is not what Enter means now. */
  function clearFound() {
    clearTimeout(typing);
    ++asked;
    isEntered = false;
    options.replaceChildren();
    select(null);
    message.textContent = words.searching;
  }

  async function find() {
    const number = ++asked;
    clearTimeout(typing);
    const term = search.value.trim();
    message.textContent = words.searching;
    try {
      const places = await placesFor(term, number);
      if (!places || number !== asked) return;
      show(places);
      const found = options.querySelectorAll("[role=option]").length - 1;
      message.textContent =
        term === "" ? "" : found > 0 ? fill(words.found, found.toLocaleString(document.documentElement.lang)) : words.nothingFound;
      if (isEntered && selected()) choose(selected().place);
    } catch {
      if (number === asked) message.textContent = words.failed;
    }
    if (number === asked) isEntered = false;
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
        const line = (text, className) =>
          option.append(Object.assign(document.createElement("bdi"), { textContent: text, className }));
        line(place.name, "");
        if (place.detail) line(place.detail, "detail");
        option.addEventListener("click", () => choose(place));
        option.place = place;
        group.append(option);
      }
    }
    options.replaceChildren(...groups);
    // What was searched for comes first. Where nothing was found, the device's own location is no
    // answer that Enter may take.
    const all = options.querySelectorAll("[role=option]");
    select(all[search.value.trim() === "" ? 0 : 1]);
  }

  const selected = () => options.querySelector('[aria-selected="true"]');

  function select(option) {
    selected()?.setAttribute("aria-selected", "false");
    option?.setAttribute("aria-selected", "true");
    option?.scrollIntoView({ block: "nearest" });
    if (option) search.setAttribute("aria-activedescendant", option.id);
    else search.removeAttribute("aria-activedescendant");
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
    clearFound();
    typing = setTimeout(find, 120);
  });

  dialog.addEventListener("close", () => {
    clearFound();
    // What changed meanwhile was kept back.
    redraw().catch(() => {});
  });

  search.addEventListener("keydown", (event) => {
    // An input method takes the keys for itself, Enter above all.
    if (event.isComposing) return;
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
        if (selected()) {
          choose(selected().place);
        } else if (options.childElementCount === 0) {
          find();
          isEntered = true;
        }
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

  function isBusy() {
    return dialog.open || document.querySelector(".is-held") !== null;
  }

  function redrawUnlessBusy() {
    if (!isBusy()) redraw().catch(() => {});
  }

  function listen() {
    const events = new EventSource("/events");
    // Events that came while nobody listened are lost: whoever listens asks for the state.
    events.onopen = redrawUnlessBusy;
    events.addEventListener("home", redrawUnlessBusy);
    events.addEventListener("entry", redrawThumbnails);
    events.onerror = () => {
      // Only a lost connection is taken up again by the browser itself, not a refused one.
      if (events.readyState === EventSource.CLOSED) setTimeout(listen, 5000);
    };
  }

  // Whoever comes back from another window may have edited the file there.
  document.addEventListener("visibilitychange", () => {
    if (!document.hidden) redrawUnlessBusy();
  });
  listen();
})();
