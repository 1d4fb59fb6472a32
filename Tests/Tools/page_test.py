#!/usr/bin/python3
"""Looks at pages in a headless browser and drives them as a person would, by keys alone.

Usage: page_test.py QEREFINE [unittest argument...]

Exits with 77 where Selenium, Chromium or ChromeDriver is not installed.
"""
import json
import os
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

try:
    from selenium.webdriver import ActionChains, Chrome, ChromeOptions
    from selenium.webdriver.chrome.service import Service
    from selenium.webdriver.common.keys import Keys
except ImportError:
    sys.exit(77)

DRIVER = "/usr/bin/chromedriver"
BROWSER = "/usr/bin/chromium"
sys.path.insert(0, str(Path(__file__).resolve().parents[1] / "Support"))
import hostile  # noqa: E402

# What markup or a script could be made of.
HOSTILE_NAMES = [hostile.NAMES[kind] for kind in (
    "quotes", "markup", "script", "handler", "comment", "lines", "controls", "direction",
    "invisible", "percent", "entity", "template")]


def write(output_format, model, *subjects):
    """Returns what the tool answers to a question for a path."""
    command = [sys.argv[1], "path", model, *subjects, "--format", output_format]
    return subprocess.run(command, check=True, capture_output=True).stdout.decode()


def join(left, right):
    return {"name": f"{left}-{right}", "left": left, "leftCardinality": "1..n",
            "right": right, "rightCardinality": "1..1",
            "condition": f"[{left}].[{right}] = [{right}].[Key]"}


# Two paths lead from Orders to Region.
TWO_PATHS = {
    "version": 1,
    "subjects": [{"name": "Orders", "items": ["Customer", "Store"]},
                 {"name": "Customer", "items": ["Key", "Region"]},
                 {"name": "Store", "items": ["Key", "Region"]},
                 {"name": "Region", "items": ["Key"]},
                 {"name": "Visits", "items": ["Store"]}],
    "shortcuts": [{"name": "Role", "target": "Customer"}],
    "relationships": [join("Orders", "Customer"), join("Orders", "Store"),
                      join("Customer", "Region"), join("Store", "Region"),
                      join("Visits", "Store")],
}

# The names of what stands out in the picture by its own colour.
LIT_TITLES = """
    const plain = getComputedStyle(document.querySelector('.edge.context path')).stroke;
    return [...document.querySelectorAll('.edge.lit')]
        .filter(edge => getComputedStyle(edge.querySelector('path')).stroke !== plain)
        .map(edge => edge.querySelector('title').textContent.split(':')[0]).sort().join(' ');"""

# How much ink and paper differ, from 1 to 21, and how light the paper is.
CONTRASTS = r"""
    const light = colour => {
        const parts = colour.match(/[\d.]+/g).slice(0, 3).map(part => part / 255)
            .map(part => part <= 0.04045 ? part / 12.92 : ((part + 0.055) / 1.055) ** 2.4);
        return 0.2126 * parts[0] + 0.7152 * parts[1] + 0.0722 * parts[2];
    };
    const of = (selector, what) => light(getComputedStyle(document.querySelector(selector))[what]);
    const ratio = (a, b) => (Math.max(a, b) + 0.05) / (Math.min(a, b) + 0.05);
    const paper = of('body', 'backgroundColor');
    return [[ratio(of('body', 'color'), paper), ratio(of('.measure', 'color'), paper),
             ratio(of('.node text', 'fill'), of('.asked polygon, .asked path', 'fill')),
             ratio(of('.edge.chosen path', 'stroke'), paper),
             ratio(of('.edge.alternative path', 'stroke'), paper)], paper];"""

# The title of the page as the two names in the picture make it.
TITLE_OF_PICTURE = r"""
    const picture = new DOMParser().parseFromString(arguments[0], 'image/svg+xml');
    if (picture.querySelector('parsererror')) return 'not well-formed';
    const other = selector => [...picture.querySelectorAll('.asked ' + selector)]
        .map(part => part.textContent.replaceAll('\u00a0', ' ')).find(text => text !== 'hub');
    return other('title') === other('text') ? 'Joins for ' + other('title') + ', hub'
        : other('title') + ' is not ' + other('text');"""


class Pages(unittest.TestCase):
    def setUp(self):
        self.folder = tempfile.TemporaryDirectory(ignore_cleanup_errors=True)
        self.addCleanup(self.folder.cleanup)
        options = ChromeOptions()
        options.binary_location = BROWSER
        for argument in ("--headless=new", "--no-sandbox", "--disable-gpu", "--no-first-run",
                         "--disable-background-networking", "--disable-component-update",
                         "--disable-sync", "--disable-dev-shm-usage", "--window-size=1100,1200"):
            options.add_argument(argument)
        # What the browser leaves behind goes with the folder.
        service = Service(DRIVER, env={**os.environ, "TMPDIR": self.folder.name})
        self.browser = Chrome(service=service, options=options)
        self.addCleanup(self.browser.quit)

    def run_script(self, body, *arguments):
        return self.browser.execute_script(body, *arguments)

    def show(self, model, *subjects):
        page = Path(self.folder.name, "page.html")
        page.write_text(write("html", model, *subjects), encoding="utf-8")
        self.browser.get(page.as_uri())

    def show_two_paths(self):
        model = Path(self.folder.name, "model.json")
        model.write_text(json.dumps(TWO_PATHS), encoding="utf-8")
        self.show(model, "Orders", "Region")

    def press(self, *keys):
        ActionChains(self.browser).send_keys(*keys).perform()

    def tab_to(self, selector):
        """Goes on with the Tab key until something of that kind has the focus."""
        for _ in range(30):
            self.press(Keys.TAB)
            if self.run_script("return document.activeElement.matches(arguments[0])", selector):
                return
        self.fail(f"the Tab key never reaches {selector}")

    def test_show_the_picture_and_need_no_network(self):
        self.show_two_paths()
        self.assertEqual(self.run_script("return document.querySelector('h1').textContent"),
                         "Joins for Orders, Region")
        self.assertEqual(self.run_script("""
            return [...document.querySelectorAll('#picture .node')]
                .filter(node => node.getBoundingClientRect().width > 20)
                .map(node => node.querySelector('text').textContent).sort().join(' ');"""),
                         "Customer Orders Region Role Store Visits")
        for kind in ("chosen", "alternative"):
            self.assertEqual(self.run_script(
                f"return document.querySelectorAll('.edge.{kind} path').length"), 2)
        self.assertEqual(
            self.run_script("return performance.getEntriesByType('resource').length"), 0)

    def test_choose_and_copy(self):
        self.show_two_paths()
        self.assertEqual(self.run_script(LIT_TITLES), "")
        self.tab_to("input[name=path]")
        self.press(Keys.DOWN)
        self.assertEqual(self.run_script(LIT_TITLES), "Orders-Store Store-Region")
        self.assertEqual(self.run_script("""
            return [...document.querySelectorAll('.path')]
                .filter(path => path.getBoundingClientRect().height > 0)
                .map(path => path.id).join();"""), "path-1")
        self.tab_to("button.copy")
        self.press(Keys.ENTER)
        # What the clipboard holds shows when it is pasted.
        self.browser.execute_async_script("""
            document.body.append(document.createElement('textarea'));
            setTimeout(() => {
                document.querySelector('textarea').focus();
                arguments[0]();
            }, 300);""")
        ActionChains(self.browser).key_down(Keys.CONTROL).send_keys("v").key_up(
            Keys.CONTROL).perform()
        self.assertEqual(
            self.run_script("return document.querySelector('textarea').value.trim()"),
            self.run_script("return document.querySelector('#path-1 pre').innerText.trim()"))
        self.assertEqual(self.run_script(
            "return document.querySelector('#path-1 [role=status]').textContent"), "Copied.")

    def test_zoom(self):
        self.show_two_paths()
        width = "return document.querySelector('svg').getBoundingClientRect().width"
        fitted = self.run_script(width)
        self.tab_to("#picture")
        for keys, factor in (("+++", 1.25 ** 3), ("-", 1.25 ** 2), ("0", 1)):
            self.press(keys)
            self.assertAlmostEqual(self.run_script(width) / fitted, factor, delta=0.02)

    def test_are_readable_on_a_phone_and_in_the_dark(self):
        self.browser.execute_cdp_cmd(
            "Emulation.setDeviceMetricsOverride",
            {"width": 360, "height": 740, "deviceScaleFactor": 2, "mobile": True})
        self.show_two_paths()
        self.assertEqual(self.run_script("return innerWidth"), 360)
        # The page itself never scrolls sideways; the picture and the SQL do within themselves.
        self.assertLessEqual(
            self.run_script("return document.documentElement.scrollWidth"), 360)
        self.assertGreaterEqual(self.run_script("""
            return Math.min(...[...document.querySelectorAll('button, fieldset label')]
                .filter(part => part.offsetParent)
                .map(part => part.getBoundingClientRect().height));"""), 40)
        for scheme in ("light", "dark"):
            self.browser.execute_cdp_cmd(
                "Emulation.setEmulatedMedia",
                {"features": [{"name": "prefers-color-scheme", "value": scheme}]})
            ratios, paper = self.run_script(CONTRASTS)
            self.assertGreaterEqual(min(ratios), 4.5, f"{scheme}: {ratios}")
            self.assertEqual(paper < 0.2, scheme == "dark")

    def test_show_hostile_names_as_text(self):
        model = Path(self.folder.name, "hostile.json")
        model.write_text(json.dumps(hostile.make_model(HOSTILE_NAMES)), encoding="utf-8")
        for name in HOSTILE_NAMES:
            with self.subTest(name=name):
                question = (model, f"{hostile.bracket(name)}.{hostile.bracket(name)}", "hub")
                self.show(*question)
                # An alert would make these fail.
                self.assertEqual(self.run_script(
                    "return document.querySelectorAll('b, i, #data ~ script').length"), 1)
                self.assertIn("<bdi>", self.run_script(
                    "return document.querySelector('h1').innerHTML"))
                self.assertEqual(
                    self.run_script(TITLE_OF_PICTURE, write("svg", *question)),
                    self.run_script("return document.querySelector('h1').textContent"))
                # The SQL that is copied is exact.
                self.assertEqual(self.run_script(
                    "return JSON.parse(document.getElementById('data').textContent).paths[0].sql"),
                    write("sql", *question))


if __name__ == "__main__":
    if not os.access(DRIVER, os.X_OK) or not os.access(BROWSER, os.X_OK):
        sys.exit(77)
    unittest.main(argv=sys.argv[:1] + sys.argv[2:], verbosity=2)
