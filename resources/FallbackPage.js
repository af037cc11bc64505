// Puts a page into the reader's language. The page itself is in English and stays so without this script; the other
// languages are in FallbackPageTexts.js. An element's data-text attribute is the key of its text.
"use strict";

// The code of the first of the reader's languages that there are texts for: "zh-Hant-TW" looks for itself, then for
// "zh-Hant", then for "zh". "en" when that comes first, or when there is nothing better.
function chooseLanguage(wanted, texts) {
  for (const tag of wanted)
    for (const parts = tag.toLowerCase().split(/[-_]/); parts.length > 0; parts.pop()) {
      const code = ["en", ...Object.keys(texts)].find((known) => known.toLowerCase() === parts.join("-"));
      if (code)
        return code;
    }
  return "en";
}

function translate(texts) {
  const code = chooseLanguage(navigator.languages, texts);
  const translation = texts[code] ?? {};
  document.documentElement.lang = translation.language ?? code;
  document.documentElement.dir = translation.direction ?? "ltr";
  for (const element of document.querySelectorAll("[data-text]")) {
    const text = translation[element.dataset.text];
    if (text !== undefined) {
      element.textContent = text;
    } else { // it stays English, and says so to screen readers and to the layout
      element.lang = "en";
      element.dir = "ltr";
    }
  }
}

// Whether the machine has a network at all is news worth telling: one of the two texts shows.
function tellNetwork() {
  for (const element of document.querySelectorAll("[data-network]"))
    element.hidden = (element.dataset.network === "up") !== navigator.onLine;
}

translate(typeof fallbackPageTexts === "undefined" ? {} : fallbackPageTexts);
tellNetwork();
addEventListener("online", tellNetwork);
addEventListener("offline", tellNetwork);
