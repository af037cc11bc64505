// Puts a page's texts into the reader's language. The page itself is in English; its block "texts" holds the others:
// language code -> key -> text, a key being the data-text attribute of the element that shows it.
"use strict";

(() => {
  const texts = JSON.parse(document.getElementById("texts").textContent);
  const wanted = (navigator.languages || [navigator.language || "en"]).map((tag) => tag.toLowerCase().split(/[-_]/)[0]);
  const language = wanted.find((code) => code === "en" || code in texts) || "en";
  const translated = texts[language] || {};

  document.documentElement.lang = language;
  for (const element of document.querySelectorAll("[data-text]"))
    if (translated[element.dataset.text])
      element.textContent = translated[element.dataset.text];

  // Only the offline page has a status: whether the machine has a network at all is news worth telling.
  const status = document.querySelector(".status [data-text]");
  if (!status)
    return;
  const words = {
    retrying: translated.retrying || status.textContent,
    noNetwork: translated.noNetwork || status.dataset.noNetwork,
  };
  const tell = () => {
    const text = navigator.onLine ? words.retrying : words.noNetwork;
    if (status.textContent !== text)
      status.textContent = text;
  };
  addEventListener("online", tell);
  addEventListener("offline", tell);
  tell();
})();
