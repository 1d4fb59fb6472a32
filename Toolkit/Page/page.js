(function () {
  "use strict";
  const data = JSON.parse(document.getElementById("data").textContent);
  const picture = document.getElementById("picture");
  const svg = picture.querySelector("svg");

  // The picture is scaled by its width and scrolled by the browser, so that keys and fingers work
  // as everywhere.
  const least = 0.1, most = 8, legible = 0.55;
  const width = svg ? svg.viewBox.baseVal.width : 0;
  let scale = 1;
  function zoom(wanted) {
    const before = scale;
    scale = Math.min(most, Math.max(least, wanted));
    const middle = [picture.scrollLeft + picture.clientWidth / 2, picture.scrollTop + picture.clientHeight / 2];
    svg.style.width = width * scale + "px";
    svg.style.height = "auto";
    picture.scrollLeft = middle[0] * scale / before - picture.clientWidth / 2;
    picture.scrollTop = middle[1] * scale / before - picture.clientHeight / 2;
  }
  function fit(smallest) {
    zoom(Math.max(smallest, Math.min(1.2, picture.clientWidth / width)));
  }
  if (svg) {
    svg.removeAttribute("height");
    document.getElementById("zoom-in").addEventListener("click", () => zoom(scale * 1.25));
    document.getElementById("zoom-out").addEventListener("click", () => zoom(scale / 1.25));
    document.getElementById("zoom-fit").addEventListener("click", () => fit(least));
    document.getElementById("zoom-whole").addEventListener("click", () => zoom(1));
    picture.addEventListener("keydown", (event) => {
      if (event.ctrlKey || event.metaKey || event.altKey) return;
      if (event.key === "+" || event.key === "=") zoom(scale * 1.25);
      else if (event.key === "-") zoom(scale / 1.25);
      else if (event.key === "0") fit(least);
      else return;
      event.preventDefault();
    });
    picture.addEventListener("wheel", (event) => {
      if (!event.ctrlKey) return;
      event.preventDefault();
      zoom(scale * (event.deltaY < 0 ? 1.15 : 1 / 1.15));
    }, { passive: false });
    fit(legible);
  }

  function choose(index) {
    const path = data.paths[index];
    picture.classList.toggle("choosing", index !== data.chosen);
    for (const lit of picture.querySelectorAll(".lit")) lit.classList.remove("lit");
    if (index !== data.chosen)
      for (const part of path.parts) {
        const group = document.getElementById(part);
        if (group) group.classList.add("lit");
      }
    document.querySelectorAll(".path").forEach((section) => {
      section.hidden = section.id !== "path-" + index;
    });
  }
  for (const input of document.querySelectorAll("input[name=path]"))
    input.addEventListener("change", () => choose(Number(input.value)));
  const checked = document.querySelector("input[name=path]:checked");
  if (checked) choose(Number(checked.value));

  async function copy(text) {
    try {
      await navigator.clipboard.writeText(text);
      return true;
    } catch (refused) {
      const area = document.createElement("textarea");
      area.value = text;
      document.body.append(area);
      area.select();
      const done = document.execCommand("copy");
      area.remove();
      return done;
    }
  }
  for (const button of document.querySelectorAll("button.copy"))
    button.addEventListener("click", async () => {
      const done = await copy(data.paths[Number(button.dataset.path)][button.dataset.text]);
      button.focus();
      button.nextElementSibling.textContent = done ? "Copied." : "Copying was refused; select the text instead.";
    });
})();
