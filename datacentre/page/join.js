// The join page's side of the message bridge. Messages go out as window.webkit.messageHandlers.NAME.postMessage(body);
// the application answers by calling the window.receive... functions below. Structured bodies are JSON text in a string.
(() => {
  "use strict";

  const byId = (id) => document.getElementById(id);
  const inApplication = () => Boolean(window.webkit?.messageHandlers?.lumoraLoaded);

  // Posts one message; false when there is no application to take it.
  function send(name, body = "") {
    if (!inApplication()) return false;
    window.webkit.messageHandlers[name].postMessage(body);
    return true;
  }

  // First of all: the application stops watching the connection once it knows that this page runs.
  send("lumoraLoaded");
  addEventListener("error", (event) => send("consoleHandler", `${event.message} (${event.filename}:${event.lineno})`));

  // --- Activity ------------------------------------------------------------------------------------------------

  const mostEntries = 60;

  function note(text, kind = "answer") {
    const entry = document.createElement("li");
    entry.className = kind;
    const time = document.createElement("time");
    const now = new Date();
    time.dateTime = now.toISOString();
    time.textContent = now.toLocaleTimeString([], { hour: "2-digit", minute: "2-digit", second: "2-digit" });
    entry.append(time, text);
    const list = byId("activity");
    list.append(entry);
    while (list.children.length > mostEntries) list.firstChild.remove();
    list.scrollTop = list.scrollHeight;
  }

  // --- Keys ----------------------------------------------------------------------------------------------------

  const compact = (text) => text.replace(/[\s-]+/g, "");

  // 123456789 as "123 456 789", 1234567890 as "123 456 7890": how people read numbers to each other.
  function grouped(key) {
    const text = String(key);
    if (text.length <= 3) return text;
    if (text.length <= 6) return `${text.slice(0, 3)} ${text.slice(3)}`;
    return `${text.slice(0, 3)} ${text.slice(3, 6)} ${text.slice(6)}`;
  }

  // The same for running text, never broken at a line's end.
  const spoken = (key) => grouped(key).replaceAll(" ", "\u00a0");

  // Regroups while the user types, keeping the caret behind the same digit.
  function groupWhileTyping(input) {
    input.addEventListener("input", () => {
      const digitsBefore = input.value.slice(0, input.selectionStart).replace(/\D/g, "").length;
      const digits = input.value.replace(/\D/g, "").slice(0, 10);
      input.value = grouped(digits);
      let caret = 0;
      for (let seen = 0; caret < input.value.length && seen < digitsBefore; caret += 1)
        if (/\d/.test(input.value[caret])) seen += 1;
      input.setSelectionRange(caret, caret);
    });
  }

  // --- Validation ----------------------------------------------------------------------------------------------

  function setError(input, message) {
    const line = byId(`${input.id}-error`);
    line.textContent = message ?? "";
    line.hidden = !message;
    if (message) input.setAttribute("aria-invalid", "true");
    else input.removeAttribute("aria-invalid");
  }

  // Checks every rule, shows what is wrong beside its field and moves to the first one.
  function check(rules) {
    const wrong = rules.filter(([input, problem]) => {
      setError(input, problem);
      return problem;
    });
    wrong[0]?.[0].focus();
    return wrong.length === 0;
  }

  const emailProblem = (text) => {
    if (!text) return "Please enter your e-mail address.";
    return /^\S+@\S+\.\S+$/.test(text) ? null : "This does not look like an e-mail address, such as you@company.example.";
  };

  const sessionKeyProblem = (key) => {
    if (!key) return "Please enter the session key.";
    return /^\d{9,10}$/.test(key) ? null : `A session key has 9 or 10 digits; this one has ${key.length}.`;
  };

  const requestKeyProblem = (key) => {
    if (!key) return "Please enter the request key.";
    const length = [...key].length;
    return length === 9 || length === 10 ? null : `A request key has 9 or 10 characters; this one has ${length}.`;
  };

  const portProblem = (text) => {
    const port = Number(text);
    return /^\d+$/.test(text) && port >= 1 && port <= 65535 ? null : "A port is a number from 1 to 65535.";
  };

  for (const input of document.querySelectorAll("input"))
    input.addEventListener("input", () => byId(`${input.id}-error`) && setError(input, null));

  // --- Outcomes ------------------------------------------------------------------------------------------------

  const needsApplication = "This needs the Ovra Tessel Lumora application. Nothing was sent.";

  function tell(id, sent, text) {
    const line = byId(id);
    line.textContent = sent ? text : needsApplication;
    line.classList.toggle("problem", !sent);
    if (!sent) note(needsApplication, "problem");
  }

  function onSubmit(formId, action) {
    byId(formId).addEventListener("submit", (event) => {
      event.preventDefault();
      action();
    });
  }

  // --- Join ----------------------------------------------------------------------------------------------------

  groupWhileTyping(byId("session-key"));

  onSubmit("join-form", () => {
    const key = compact(byId("session-key").value);
    const email = byId("join-email").value.trim();
    const dataCentre = byId("data-centre").value;
    if (!check([[byId("session-key"), sessionKeyProblem(key)], [byId("join-email"), emailProblem(email)]])) return;
    // The application accepts the key as a number only.
    const details = { sessionKey: Number(key), email };
    if (dataCentre) details.dc = dataCentre;
    const sent = send("sendJoinDetailsToNative", JSON.stringify(details));
    if (sent) note(`Asked the application to join session ${spoken(key)}.`, "sent");
    tell("join-outcome", sent, "Joining. The session window opens in a moment.");
    send("getActiveSessionKey");
  });

  byId("forget-key").addEventListener("click", () => {
    if (!send("clearActiveSessionKey")) return;
    note("Asked the application to forget the session key.", "sent");
    send("getActiveSessionKey");
    byId("session-key").focus();
  });

  // --- Request -------------------------------------------------------------------------------------------------

  const customerFields = ["name", "company", "email", "language"];

  function customerDetails() {
    return Object.fromEntries(customerFields.map((field) => [field, byId(`customer-${field}`).value.trim()]));
  }

  function detailsAreGood(details) {
    return check([
      [byId("customer-name"), details.name ? null : "Please tell us your name."],
      [byId("customer-email"), emailProblem(details.email)],
    ]);
  }

  onSubmit("details-form", () => {
    const details = customerDetails();
    if (!detailsAreGood(details)) return;
    const sent = send("sendCustomerDetailsToNative", JSON.stringify(details));
    if (sent) note("Gave the application your details to keep.", "sent");
    tell("details-outcome", sent, "Saved for next time.");
  });

  // What is kept of a request: the key and when it was sent. Base 64, because the text comes back inside a quoted string.
  const digestOf = (key) => btoa(JSON.stringify({ key: encodeURIComponent(key), at: new Date().toISOString() }));

  onSubmit("request-form", () => {
    const key = compact(byId("request-key").value);
    const details = customerDetails();
    if (!check([[byId("request-key"), requestKeyProblem(key)]]) || !detailsAreGood(details)) return;
    // The session carries the stored name, so the details go first.
    send("sendCustomerDetailsToNative", JSON.stringify(details));
    const sent = send("sendRRSessionKeyToNative", key);
    send("sendRRSessionDigestToNative", digestOf(key));
    if (sent) note(`Sent request ${key}.`, "sent");
    tell("request-outcome", sent, "Sent. The session window opens as soon as a technician is ready.");
    send("getRRSessionDigest");
  });

  byId("forget-request").addEventListener("click", () => {
    if (!send("clearRRSessionDigest")) return;
    note("Asked the application to forget the last request.", "sent");
    send("getRRSessionDigest");
    byId("request-key").focus();
  });

  // --- Connection ----------------------------------------------------------------------------------------------

  function showCredentials() {
    byId("proxy-credentials").hidden = !byId("proxy-auth").checked;
  }
  byId("proxy-auth").addEventListener("change", showCredentials);

  byId("show-password").addEventListener("click", (event) => {
    const shown = byId("proxy-password").type === "text";
    byId("proxy-password").type = shown ? "password" : "text";
    event.currentTarget.setAttribute("aria-pressed", String(!shown));
    event.currentTarget.textContent = shown ? "Show" : "Hide";
  });

  onSubmit("proxy-form", () => {
    const host = byId("proxy-host").value.trim();
    const port = byId("proxy-port").value.trim();
    const authRequired = byId("proxy-auth").checked;
    const userName = authRequired ? byId("proxy-user").value : "";
    const rules = [
      [byId("proxy-host"), host && !/\s/.test(host) ? null : "Please enter the proxy’s host name or address."],
      [byId("proxy-port"), portProblem(port)],
      [byId("proxy-user"), authRequired && !userName ? "Please enter the user name." : null],
    ];
    if (!check(rules)) return;
    const password = authRequired ? byId("proxy-password").value : "";
    const proxy = { host, port: Number(port), authRequired, userName, password };
    const sent = send("sendProxyDetailsToNative", JSON.stringify(proxy));
    if (sent) note(`Gave the application the proxy ${host}, port ${port}.`, "sent");
    tell("proxy-outcome", sent, "Saved. The next session uses it.");
  });

  byId("open-proxy").addEventListener("click", () => {
    const sent = send("openProxy");
    if (sent) note("Asked for the system’s proxy settings.", "sent");
    tell("proxy-outcome", sent, "The system’s settings open in their own window, if this system has them.");
  });

  // --- What the application answers ----------------------------------------------------------------------------

  const isText = (value) => typeof value === "string" && value !== "";

  // Prefills a field unless the user has already typed there.
  function prefill(id, value) {
    const input = byId(id);
    if (!isText(value) || input.value || document.activeElement === input) return;
    input.value = value;
  }

  window.receiveSystemOs = (system) => {
    note(`The application runs on ${system === "mac" ? "macOS" : system}.`);
  };

  window.receiveCustomerDetails = (details) => {
    if (details === null || typeof details !== "object") {
      note("The application could not read your details.", "problem");
      return;
    }
    for (const field of ["name", "company", "email"]) prefill(`customer-${field}`, details[field]);
    prefill("join-email", details.email);
    const language = byId("customer-language");
    if ([...language.options].some((option) => option.value === details.language)) language.value = details.language;
    note(isText(details.name) ? `Your details are known: ${details.name}${isText(details.email) ? `, ${details.email}` : ""}.`
                              : "No details of yours are stored yet.");
  };

  window.receiveProxyDetails = (proxy) => {
    if (proxy === null || typeof proxy !== "object") {
      note("The application could not read the proxy settings.", "problem");
      return;
    }
    prefill("proxy-host", proxy.host);
    if (Number(proxy.port) > 0) prefill("proxy-port", String(proxy.port));
    prefill("proxy-user", proxy.userName);
    prefill("proxy-password", proxy.password);
    byId("proxy-auth").checked = proxy.authRequired === true;
    showCredentials();
    const sign = proxy.authRequired === true ? ", with a user name" : "";
    note(isText(proxy.host) ? `A proxy is set: ${proxy.host}, port ${proxy.port}${sign}.` : "No proxy is set.");
  };

  window.receiveActiveSessionKey = (key) => {
    byId("active-session").hidden = !isText(key);
    byId("active-key").textContent = isText(key) ? spoken(key) : "";
    note(isText(key) ? `The active session key is ${spoken(key)}.` : "No session key is active.");
  };

  window.receiveRRSessionDigest = (digest) => {
    let request = null;
    try {
      request = isText(digest) ? JSON.parse(atob(digest)) : null;
    } catch (error) {
      note("The stored request is not one of this page’s.", "problem");
      return;
    }
    byId("last-request").hidden = request === null;
    if (request === null) {
      note("No earlier request is stored.");
      return;
    }
    const when = new Date(request.at).toLocaleString([], { dateStyle: "medium", timeStyle: "short" });
    byId("last-request-text").textContent = `Request ${decodeURIComponent(request.key)} was sent on ${when}.`;
    note(`An earlier request is stored, sent on ${when}.`);
  };

  // --- Tabs ----------------------------------------------------------------------------------------------------

  const tabs = [...document.querySelectorAll('[role="tab"]')];

  function choose(tab, focus) {
    for (const other of tabs) {
      const chosen = other === tab;
      other.setAttribute("aria-selected", String(chosen));
      other.tabIndex = chosen ? 0 : -1;
      byId(other.getAttribute("aria-controls")).hidden = !chosen;
    }
    if (focus) tab.focus();
  }

  for (const [index, tab] of tabs.entries()) {
    tab.addEventListener("click", () => choose(tab));
    tab.addEventListener("keydown", (event) => {
      const last = tabs.length - 1;
      const target = {
        ArrowRight: index === last ? 0 : index + 1,
        ArrowLeft: index === 0 ? last : index - 1,
        Home: 0,
        End: last,
      }[event.key];
      if (target === undefined) return;
      event.preventDefault();
      choose(tabs[target], true);
    });
  }
  const wanted = tabs.find((tab) => tab.id === `tab-${location.hash.slice(1)}`);
  if (wanted) choose(wanted);

  byId("report-abuse").addEventListener("click", (event) => {
    if (!inApplication()) return;
    event.preventDefault();
    send("sendJoinReportAbuseLinkToNative", event.currentTarget.href);
    note("Opened the report page in your browser.", "sent");
  });

  // --- Start ---------------------------------------------------------------------------------------------------

  // The organisation's token stands in the address of the first load only; a later one without it is still theirs.
  function rememberedToken() {
    const token = new URLSearchParams(location.search).get("lumora_token");
    try {
      if (token) sessionStorage.setItem("lumora_token", token);
      return token || sessionStorage.getItem("lumora_token");
    } catch (error) {
      return token; // storage can be switched off; the page works without
    }
  }

  const application = inApplication();
  byId("bridge-state").classList.add(application ? "connected" : "alone");
  byId("bridge-text").textContent = application ? "Application connected" : "No application";
  byId("browser-notice").hidden = application;
  if (rememberedToken()) byId("footer-text").prepend("Set up by your organisation. ");

  if (application) {
    note("The page is ready and asked the application what it knows.", "sent");
    send("sendLumoraTitleToNative", document.title);
    send("getSystemOs");
    send("getCustomerDetails");
    send("getProxyDetails");
    send("getActiveSessionKey");
    send("getRRSessionDigest");
  } else {
    note("Opened in a web browser: there is no application to talk to.", "problem");
  }
})();
