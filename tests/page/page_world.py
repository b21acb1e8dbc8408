"""A database, the server of the page and browsers, for stories that begin and end with a database."""
import json
import os
import shutil
import signal
import socket
import sqlite3
import subprocess
import tempfile
import time

from selenium import webdriver
from selenium.webdriver.chrome.options import Options
from selenium.webdriver.chrome.service import Service
from selenium.webdriver.common.action_chains import ActionChains
from selenium.webdriver.common.by import By
from selenium.webdriver.common.keys import Keys
from selenium.webdriver.support.ui import WebDriverWait

BUILD = os.environ["CHANNELLIST_BUILD"]
TOOL = os.path.join(BUILD, "tools/channellist/channellist")
SERVER = os.path.join(BUILD, "tools/channellist-page/channellist-page")
SAMPLE = os.path.join(os.path.dirname(__file__), "../../samples/channels.conf")
PATIENCE = 20  # seconds


def write_channels(path, count):
    """`count` channels out of the sample: the same names with a number, on other service ids."""
    with open(SAMPLE, encoding="utf-8") as sample:
        lines = [line.rstrip("\n") for line in sample if line.strip() and not line.startswith(":")]
    with open(path, "w", encoding="utf-8") as out:
        for i in range(count):
            fields = lines[i % len(lines)].split(":")
            if i >= len(lines):
                name, *provider = fields[0].split(";")
                fields[0] = ";".join([f"{name} {i // len(lines) + 1}", *provider])
                fields[9] = str(20000 + i)
            out.write(":".join(fields) + "\n")


def free_port():
    with socket.socket() as probe:
        probe.bind(("127.0.0.1", 0))
        return probe.getsockname()[1]


class World:
    """Everything of one story, in a folder of its own."""

    def __init__(self, channels=None):
        self.folder = tempfile.mkdtemp(prefix="page-")
        self.database = os.path.join(self.folder, "servicelist.db")
        self.environment = dict(os.environ, HOME=self.folder, XDG_STATE_HOME=self.folder)
        for name in ("DISPLAY", "WAYLAND_DISPLAY", "XDG_RUNTIME_DIR"):
            self.environment.pop(name, None)
        source = SAMPLE
        if channels:
            source = os.path.join(self.folder, "channels.conf")
            write_channels(source, channels)
        self.tool("import", "--force", "--no-undo", source, self.database, db=False)
        self.port = free_port()
        self.server = None
        self.browsers = []

    def close(self):
        for browser in self.browsers:
            browser.quit()
        self.stop()
        shutil.rmtree(self.folder, ignore_errors=True)

    def tool(self, *words, db=True):
        command = [TOOL, *(["--db", self.database] if db else []), *words]
        return subprocess.run(command, env=self.environment, check=True, text=True,
                              stdout=subprocess.PIPE, stderr=subprocess.PIPE).stdout

    def serve(self, *options):
        self.server = subprocess.Popen(
            [SERVER, "--db", self.database, "--port", str(self.port), "--no-browser", *options],
            env=self.environment, text=True, stdout=subprocess.PIPE)
        self.address = self.server.stdout.readline().split()[-1]
        return self.address

    def stop(self, how=signal.SIGTERM):
        if self.server:
            self.server.send_signal(how)
            self.server.wait(30)
            self.server.stdout.close()
            self.server = None

    def execute(self, sql, *values):
        with sqlite3.connect(self.database, timeout=10) as connection:
            return connection.execute(sql, values).fetchall()

    def hold_ott_numbers(self, name, *numbers):
        with sqlite3.connect(os.path.join(self.folder, "zentova_DB_V1.3.db")) as connection:
            connection.execute("CREATE TABLE SQL_OTTFavChannels (favName TEXT, favIndex INTEGER)")
            connection.executemany("INSERT INTO SQL_OTTFavChannels VALUES (?, ?)",
                                   [(name, number) for number in numbers])

    def content(self, name):
        """(number, name) of what a list shows, and with a "-" in front what it hides."""
        services = json.loads(self.tool("services", name, "--json"))
        return [(each["number"], ("-" if "hidden" in each["state"] else "") + each["name"])
                for each in services]

    def names(self, name):
        return [each for _, each in self.content(name)]

    def browser(self, width=1280, height=800, touch=False):
        options = Options()
        for flag in ("--headless=new", "--no-sandbox", "--disable-gpu", "--disable-dev-shm-usage",
                     "--disable-background-networking", "--disable-component-update",
                     "--disable-sync", "--no-first-run", f"--window-size={width},{height}",
                     f"--user-data-dir={tempfile.mkdtemp(dir=self.folder)}"):
            options.add_argument(flag)
        options.set_capability("goog:loggingPrefs", {"browser": "ALL"})
        driver = webdriver.Chrome(options=options, service=Service("/usr/bin/chromedriver"))
        self.browsers.append(driver)
        driver.execute_cdp_cmd("Emulation.setDeviceMetricsOverride", {
            "width": width, "height": height, "deviceScaleFactor": 1, "mobile": touch})
        if touch:
            driver.execute_cdp_cmd("Emulation.setTouchEmulationEnabled", {"enabled": True})
        driver.get(self.address)
        page = Page(driver)
        page.wait(lambda: page.run("""
            return document.querySelectorAll('.pane').length === 2 &&
                [...document.querySelectorAll('.pane .scroller')].every((each) => each.ariaLabel) &&
                ![...document.querySelectorAll('.empty')].some((each) =>
                    !each.hidden && each.textContent.startsWith('Loading'))"""))
        return page


class Page:
    """What a person sees of the page and does with it."""

    def __init__(self, driver):
        self.driver = driver

    def wait(self, condition, seconds=PATIENCE):
        return WebDriverWait(self.driver, seconds, 0.05).until(lambda _: condition())

    def find(self, selector, pane=None):
        scope = self.driver if pane is None else self.panes()[pane]
        return scope.find_element(By.CSS_SELECTOR, selector)

    def panes(self):
        return self.driver.find_elements(By.CSS_SELECTOR, ".pane")

    def text(self, selector):
        return self.run("return document.querySelector(arguments[0])?.innerText ?? ''", selector)

    def run(self, script, *values):
        return self.driver.execute_script(script, *values)

    def rows(self, pane):
        """(number, name) of the rows in the document, in their order."""
        return self.run("""
            return [...document.querySelectorAll('.pane')[arguments[0]]?.querySelectorAll('.row') ?? []]
                .filter((row) => !row.hidden)
                .sort((a, b) => a.getAttribute('aria-posinset') - b.getAttribute('aria-posinset'))
                .map((row) => [row.querySelector('.number').textContent,
                               row.querySelector('.name').textContent]);""", pane)

    def row(self, pane, name):
        """The row of that name, which is in sight."""
        return self.wait(lambda: self.run("""
            return [...document.querySelectorAll('.pane')[arguments[0]].querySelectorAll('.row')]
                .find((row) => !row.hidden && row.querySelector('.name').textContent === arguments[1]);
            """, pane, name))

    def begins(self, pane, *names):
        """Waits until the rows of a pane begin with those."""
        self.wait(lambda: [name for _, name in self.rows(pane)[:len(names)]] == [*names])

    def reads(self, selector, words):
        self.wait(lambda: words in self.text(selector))

    def do(self, pane, label, name):
        """Presses a button for the one row."""
        self.row(pane, name).click()
        self.press(label, pane)

    def search(self, pane, text):
        self.find(".search", pane).send_keys(Keys.CONTROL, "a", Keys.NULL, Keys.DELETE, text)

    def filter(self, pane, **wishes):
        for name in ("kind", "place", "hd", "scrambled", "hidden"):
            self.set(self.find(f"[name={name}]", pane), wishes.get(name, "all"))

    def set(self, select, text):
        self.run("""
            const [select, text] = arguments;
            select.value = [...select.options].find((each) => each.text === text).value;
            select.dispatchEvent(new Event('input', {bubbles: true}));""", select, text)

    def press(self, label, pane=None):
        self.find(f"[data-do={label}]" if pane is not None else f"#{label}", pane).click()

    def choose(self, pane, name):
        self.set(self.find(".choice", pane), name)

    def hold(self, key, *others):
        ActionChains(self.driver).key_down(key).send_keys(*others).key_up(key).perform()

    def emptying(self):
        """The request that would empty FAV1."""
        return self.run("""return (async () => {
            const [{uuid, version}] = (await (await fetch('api/lists')).json()).content.lists;
            return JSON.stringify({lists: [{uuid, version, entries: []}]});
        })();""")

    def saved(self):
        self.reads("#count", "flushed")

    def save(self):
        self.press("save")
        self.saved()
