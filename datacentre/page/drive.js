// Lets a test drive this page: asks the server for scripts, runs each and posts its value back. Served only with --drive.
(() => {
  "use strict";

  // Every reply of the application, as the page got it.
  window.received = [];
  window.post = (name, body) => window.webkit.messageHandlers[name].postMessage(body);

  const replies = [
    "receiveRRSessionDigest",
    "receiveCustomerDetails",
    "receiveProxyDetails",
    "receiveActiveSessionKey",
    "receiveSystemOs",
  ];
  for (const name of replies) {
    let handler = () => {};
    const recorder = (...args) => {
      window.received.push({ name, args });
      return handler(...args);
    };
    // The page's own function is set later and must not push the recorder aside.
    Object.defineProperty(window, name, {
      configurable: true,
      enumerable: true,
      get: () => recorder,
      set: (value) => {
        handler = typeof value === "function" ? value : () => {};
      },
    });
  }

  const AsyncFunction = (async () => {}).constructor;
  const retryAfter = 500;
  const pause = (milliseconds) => new Promise((resolve) => setTimeout(resolve, milliseconds));

  async function evaluate(script) {
    try {
      const value = await new AsyncFunction("post", script)(window.post);
      // Values that JSON has no form for become null, and what cannot be written at all throws here.
      return { result: JSON.parse(JSON.stringify(value === undefined ? null : value) ?? "null"), error: null };
    } catch (error) {
      return { result: null, error: String(error) };
    }
  }

  async function report(id, outcome) {
    await fetch("/drive/result", {
      method: "POST",
      headers: { "Content-Type": "application/json" },
      body: JSON.stringify({ id, ...outcome }),
    });
  }

  async function poll(page) {
    for (;;) {
      try {
        const response = await fetch(`/drive/next?page=${page}`, { cache: "no-store" });
        if (response.status === 410) return;
        if (response.status === 200) {
          const { id, script } = await response.json();
          await report(id, await evaluate(script));
        } else if (response.status !== 204) {
          await pause(retryAfter);
        }
      } catch (error) {
        await pause(retryAfter); // the server is away, as tests want it at times
      }
    }
  }

  const start = () => poll(`${Date.now()}-${Math.random().toString(36).slice(2)}`);
  // A page that comes back from the browser's cache is a new load: its old name has been replaced.
  addEventListener("pageshow", (event) => {
    if (event.persisted) start();
  });
  start();
})();
