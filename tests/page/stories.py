"""Stories of the page in a browser. Each begins with a database and ends with what it holds then."""
import contextlib
import gzip
import http.client
import json
import os
import pathlib
import shutil
import signal
import socket
import sqlite3
import subprocess
import threading
import time
import unittest

from selenium.webdriver.common.action_chains import ActionChains
from selenium.webdriver.common.by import By
from selenium.webdriver.common.keys import Keys

from page_world import SAMPLE, SERVER, World

FAVOURITES = os.path.join(os.path.dirname(SAMPLE), "favourites.conf")
PICTURES = os.environ.get("CHANNELLIST_PICTURES")


class Story(unittest.TestCase):
    channels = None

    def setUp(self):
        self.world = World(self.channels)
        self.addCleanup(self.world.close)
        self.world.tool("import", "--favourites", FAVOURITES)

    def begin(self, *options, **looks):
        """The world, its page in a browser, and what FAV1 holds."""
        self.world.serve(*options)
        return self.world, self.world.browser(**looks), self.world.names("FAV1")

    def picture(self, page, name):
        if PICTURES:
            time.sleep(0.3)
            page.driver.save_screenshot(os.path.join(PICTURES, name + ".png"))

    def drag(self, page, row, target, below=True):
        height = row.size["height"]
        ActionChains(page.driver, duration=60).move_to_element(row).click_and_hold() \
            .move_by_offset(10, 10) \
            .move_to_element_with_offset(target, 0, int(height * (0.4 if below else -0.4))) \
            .release().perform()


class Building(Story):
    channels = 4000

    def test_a_list_is_built_by_dragging_blocks(self):
        world, page, before = self.begin()
        page.search(1, "zdfinfo")
        page.begins(1, "ZDFinfo HD")
        page.row(1, "ZDFinfo HD").click()
        ActionChains(page.driver).key_down(Keys.SHIFT).click(page.row(1, "ZDFinfo HD 4")) \
            .key_up(Keys.SHIFT).perform()
        self.picture(page, "page")
        self.drag(page, page.row(1, "ZDFinfo HD 3"), page.row(0, "NPO 1"))
        block = ["ZDFinfo HD", "ZDFinfo HD 2", "ZDFinfo HD 3", "ZDFinfo HD 4"]
        page.begins(0, before[0], *block)
        self.drag(page, page.row(0, "ZDF HD"), page.row(0, "NPO 1"), below=False)
        page.begins(0, "ZDF HD")
        page.save()
        before.remove("ZDF HD")
        after = ["ZDF HD", before[0], *block, *before[1:]]
        self.assertEqual(world.content("FAV1"), list(enumerate(after, 1)))
        page.press("take-back")
        page.reads("#count", "Taken back")
        self.assertEqual(world.names("FAV1"), ["NPO 1", "ZDF HD", *before[1:]])
        world.tool("undo")
        self.assertEqual(world.names("FAV1"), after)

    def test_the_same_by_keyboard_alone(self):
        world, page, _ = self.begin()
        page.choose(0, "FAV3")
        before = world.names("FAV3")

        def press(*keys):
            ActionChains(page.driver).send_keys(*keys).perform()

        page.run("document.querySelectorAll('.scroller')[1].focus()")
        press("/")
        press("tagesschau24 hd 7")
        page.begins(1, "tagesschau24 HD 7")
        press(Keys.ENTER, Keys.SPACE, Keys.ENTER)
        page.reads("#count", "1 change")
        press(Keys.ARROW_LEFT, Keys.END)
        page.hold(Keys.ALT, Keys.ARROW_UP)
        press("2", Keys.ENTER)
        page.wait(lambda: page.rows(0)[1][1] == "tagesschau24 HD 7")
        self.assertIn("is number 2 now", page.text("#said"))
        page.hold(Keys.CONTROL, "z")
        page.hold(Keys.CONTROL, "z")
        page.hold(Keys.CONTROL, "y")
        page.hold(Keys.CONTROL, "s")
        page.saved()
        self.assertEqual(world.content("FAV3"),
                         list(enumerate([*before[:-1], "tagesschau24 HD 7", before[-1]], 1)))

    def test_by_touch_on_a_small_screen(self):
        world, page, before = self.begin(width=360, height=740, touch=True)
        self.picture(page, "page-small")
        handle = page.row(0, before[0]).find_element(By.CSS_SELECTOR, ".handle").rect
        target = page.row(0, before[3]).rect

        def touch(kind, y):
            points = [] if kind == "touchEnd" else [{"x": handle["x"] + 8, "y": y}]
            page.driver.execute_cdp_cmd("Input.dispatchTouchEvent",
                                        {"type": kind, "touchPoints": points})

        start = handle["y"] + handle["height"] / 2
        end = target["y"] + target["height"] * 0.9
        touch("touchStart", start)
        for step in range(1, 6):
            touch("touchMove", start + (end - start) * step / 5)
        touch("touchEnd", 0)
        page.begins(0, *before[1:4], before[0])
        page.do(0, "remove", before[5])
        page.save()
        expected = [*before[1:4], before[0], *before[4:]]
        expected.remove(before[5])
        self.assertEqual(world.content("FAV1"), list(enumerate(expected, 1)))


class Finding(Story):
    def test_search_and_filters_show_and_take_exactly_what_fits(self):
        self.world.tool("edit", "all", "hide", "3", "hide", "20")
        services = json.loads(self.world.tool("services", "all", "--json"))
        world, page, _ = self.begin()
        page.choose(0, "FAV4")
        before = world.names("FAV4")
        cases = [
            ("hd BBC", {}, lambda each: "HD" in each["name"] and "BBC" in each["name"]),
            ("19", {}, lambda each: "19" in each["name"] or str(each["number"]).startswith("19")),
            ("", {"kind": "radio"}, lambda each: each["kind"] == "radio"),
            ("", {"place": "satellite 28.2°E"}, lambda each: each["satellite"] == 1282),
            ("", {"hidden": "yes"}, lambda each: "hidden" in each["state"]),
            ("", {"scrambled": "yes", "hd": "no"},
             lambda each: "scrambled" in each["state"] and not each["hd"]),
            ("sport", {"hd": "yes", "hidden": "no"},
             lambda each: "sport" in each["name"].lower() and each["hd"] and "hidden" not in each["state"]),
            ("", {"place": "cable", "kind": "TV", "scrambled": "no", "hidden": "no"},
             lambda each: each["delivery"] == "cable" and each["kind"] == "TV" and not each["state"]),
        ]
        for text, wishes, fits in cases:
            page.search(1, text)
            page.filter(1, **wishes)
            found = [each["name"] for each in services if fits(each)]
            page.press("all", 1)
            self.assertEqual(page.find(".chosen", 1).text, f"{len(found)} selected", wishes)
            seen = [name for _, name in page.rows(1)]
            self.assertEqual(seen, found[:len(seen)], (text, wishes))
        self.drag(page, page.row(1, found[2]), page.row(0, before[1]))
        page.begins(0, *before[:2], *found)
        page.search(0, "jazz")
        page.press("all", 0)
        page.press("end", 0)
        page.save()
        jazz = ["Jazz FM", "Swiss Jazz"]
        rest = [name for name in [*before[:2], *found, *before[2:]] if name not in jazz]
        self.assertEqual(world.content("FAV4"), list(enumerate([*rest, *jazz], 1)))

    def test_read_only_lets_nothing_be_written_and_says_so(self):
        world, page, names = self.begin("--read-only")
        before = pathlib.Path(world.database).read_bytes()
        page.reads("#connection", "read-only")
        page.do(0, "top", names[2])
        page.reads("#trouble", "nothing can be changed")
        self.assertEqual(page.text("#said"), "")  # not that it moved
        self.drag(page, page.row(0, names[3]), page.row(0, names[0]), below=False)
        page.hold(Keys.CONTROL, "s")
        page.begins(0, *names[:5])
        answer = page.run("""return fetch('api/save', {method: 'POST', body: arguments[0],
            headers: {'Content-Type': 'application/json'}}).then((each) => each.text());""", page.emptying())
        self.assertIn("--read-only: nothing is written", answer)
        self.assertEqual(pathlib.Path(world.database).read_bytes(), before)


class Numbers(Story):
    def test_the_page_numbers_as_the_commands_do(self):
        """Gaps, hidden entries and the other lists; each step is done by a command to a copy."""
        world = self.world
        world.tool("edit", "FAV2", "move", "4", "to", "30", "move", "6", "to", "40", "hide", "2")
        names = [name.lstrip("-") for name in world.names("FAV2")]
        other = World()
        self.addCleanup(other.close)
        other.tool("import", "--favourites", FAVOURITES)
        other.tool("edit", "FAV2", "move", "4", "to", "30", "move", "6", "to", "40", "hide", "2")
        for each in (world, other):
            each.execute("UPDATE FavoriteItem SET ChannelNum = 'none' WHERE FavoriteId IN (SELECT Pid FROM"
                         " FavoriteList WHERE Name = 'FAV2') AND ServiceId IN (SELECT Pid FROM Service"
                         " WHERE Name LIKE 'Sky Sports F1%')")
        _, page, _ = self.begin()
        page.choose(0, "FAV2")

        def number(name, digits):
            page.do(0, "number", name)
            page.find("#number").send_keys(digits, Keys.ENTER)
            ActionChains(page.driver).pause(0.1).perform()

        page.search(0, "sky")
        page.begins(0, "Sky Sport News HD", "Sky Sports F1")
        page.press("all", 0)
        page.press("number", 0)
        page.find("#number").send_keys("5", Keys.ENTER)
        page.search(0, "")
        other.tool("edit", "FAV2", "move", "Sky*", "to", "5")
        for name, to in ((names[0], "5"), (names[-1], "7"), (names[4], "1"), (names[2], "99")):
            number(name, to)
            other.tool("edit", "FAV2", "move", name, "to", to)
        page.do(0, "remove", names[3])
        other.tool("edit", "FAV2", "remove", names[3])
        page.do(0, "show", names[1])
        other.tool("edit", "FAV2", "restore", names[1])
        page.choose(0, "All")
        page.begins(0, "NPO 1")
        page.do(0, "hide", "NPO 1")
        other.tool("edit", "all", "hide", "1", "--renumber")
        page.save()
        for name in ("FAV1", "FAV2", "all"):
            self.assertEqual(world.content(name), other.content(name), name)

    def test_places_of_ott_channels_stay_theirs(self):
        world = self.world
        world.hold_ott_numbers("FAV1", 2, 4)
        world.tool("edit", "FAV1", "--renumber")
        before = world.content("FAV1")
        _, page, names = self.begin()
        self.assertEqual(page.rows(0)[1], ["2", "an OTT channel"])
        page.do(0, "down", before[0][1])
        page.save()
        numbers = [number for number, _ in before]
        self.assertEqual(numbers[:4], [1, 3, 5, 6])
        self.assertEqual(world.content("FAV1"),
                         list(zip(numbers, [names[1], names[0], *names[2:]])))


class Together(Story):
    def test_two_browsers_and_a_shell_lose_nothing(self):
        world, one, names = self.begin()
        two = world.browser()
        one.do(0, "top", names[3])
        two.do(0, "remove", names[5])
        one.save()
        two.wait(lambda: two.find("#conflict").is_displayed())
        self.picture(two, "page-merge")
        two.choose(1, "The world today")  # which it reads now
        two.begins(1, world.names("The world today")[0])
        self.assertTrue(two.find("#conflict").is_displayed())
        self.assertIn(names[3], two.text("#theirs"))
        self.assertIn(names[5], two.text("#mine"))
        world.tool("edit", "FAV1", "add", "KiKA HD")
        two.reads("#theirs", "KiKA HD")
        two.press("merge")
        two.save()
        expected = [names[3], *names[:3], names[4], *names[6:], "KiKA HD"]
        self.assertEqual(world.content("FAV1"), list(enumerate(expected, 1)))
        one.begins(0, *expected[:6])  # by itself

    def test_a_reload_keeps_the_work_and_a_killed_server_too(self):
        world, page, names = self.begin()
        page.do(0, "top", names[2])
        page.driver.refresh()
        page.begins(0, names[2])
        world.stop(signal.SIGKILL)
        page.press("save")
        page.reads("#trouble", "does not answer")
        self.assertEqual(world.names("FAV1"), names)
        world.serve()
        page.driver.get(world.address)
        page.begins(0, names[2])
        page.save()
        self.assertEqual(world.names("FAV1"), [names[2], *names[:2], *names[3:]])

    def test_of_two_lists_one_is_saved_and_the_other_kept(self):
        """Another program writes FAV1 as soon as the first of them is written."""
        world, page, names = self.begin()
        talk = "The world today"
        others = world.names(talk)
        page.choose(1, talk)
        page.do(1, "down", others[0])
        page.do(0, "top", names[2])
        page.driver.refresh()
        page.begins(0, names[2])
        page.choose(1, talk)
        page.begins(1, others[1], others[0])
        pid = dict((name, pid) for pid, name in world.execute("SELECT Pid, Name FROM FavoriteList"))
        world.execute("CREATE TRIGGER Overtake AFTER UPDATE ON FavoriteItem"
                      f" WHEN NEW.FavoriteId = {pid[talk]} BEGIN UPDATE FavoriteItem SET isDeleted = 1"
                      f" WHERE FavoriteId = {pid['FAV1']} AND ChannelNum = 5; END")
        page.press("save")
        page.wait(lambda: page.find("#conflict").is_displayed())
        self.assertNotIn(others[0], page.text("#mine"))
        world.execute("DROP TRIGGER Overtake")
        page.press("merge")
        page.save()
        self.assertEqual(world.names(talk), [others[1], others[0], *others[2:]])
        expected = [names[2], *names[:2], names[3], *names[5:]]
        self.assertEqual([name for name in world.names("FAV1") if name[0] != "-"], expected)

    def test_the_server_is_killed_while_it_saves(self):
        for delay in (0.0, 0.01, 0.03, 0.06, 0.1):
            world, page, names = self.begin()
            page.do(0, "top", names[1])
            page.press("save")
            time.sleep(delay)
            world.stop(signal.SIGKILL)
            self.assertIn(world.names("FAV1"), (names, [names[1], names[0], *names[2:]]))
            world.tool("check")  # fails with a finding
            page.driver.quit()

    def test_a_locked_database_is_told_and_written_later(self):
        world, page, names = self.begin()
        lock = sqlite3.connect(world.database, isolation_level=None, check_same_thread=False)
        self.addCleanup(lock.close)
        page.do(0, "remove", names[1])
        lock.execute("BEGIN EXCLUSIVE")
        timer = threading.Timer(10, lambda: lock.execute("ROLLBACK"))
        timer.start()
        self.addCleanup(timer.join)
        page.press("save")
        page.wait(lambda: "locked" in page.text("#trouble") or "flushed" in page.text("#count"), 30)
        timer.join()
        if "flushed" not in page.text("#count"):
            page.wait(lambda: page.find("#save").is_enabled())
            page.save()
        self.assertEqual(world.names("FAV1"), [names[0], *names[2:]])

    def test_a_database_that_is_moved_or_another_is_told_and_the_work_kept(self):
        world, page, names = self.begin()
        page.do(0, "top", names[2])
        other = World()
        self.addCleanup(other.close)
        other.execute("UPDATE FavoriteList SET Uuid = 'x' || Uuid")
        before = other.content("FAV1")
        os.rename(world.database, world.database + ".away")
        page.reads("#trouble", "there is no database")
        shutil.copy(other.database, world.database)
        page.reads("#trouble", "has other lists or services now")
        page.press("save")
        page.reads("#trouble", "no such list any more")
        page.driver.refresh()
        page.reads("#trouble", "that this database does not have")
        self.assertEqual(world.content("FAV1"), before)
        os.rename(world.database + ".away", world.database)
        page.driver.refresh()
        page.begins(0, names[2])
        page.save()
        self.assertEqual(world.names("FAV1"), [names[2], *names[:2], *names[3:]])

    def test_a_scan_deals_other_keys(self):
        world, page, names = self.begin()
        page.do(0, "top", names[2])
        before = world.content("FAV1")
        world.execute("UPDATE Service SET Uuid = 'another' || Uuid WHERE Name = ?", names[5])
        page.reads("#trouble", "other lists or services")
        page.press("save")
        page.wait(lambda: page.find("#save").is_enabled())
        self.assertEqual(world.content("FAV1"), before)
        page.press("discard")
        page.begins(0, names[0])

    def test_every_width_has_everything_in_reach(self):
        _, page, names = self.begin()
        for width in (320, 720, 1280, 3840):
            page.driver.execute_cdp_cmd("Emulation.setDeviceMetricsOverride", {
                "width": width, "height": 740, "deviceScaleFactor": 1, "mobile": False})
            outside = page.run("""
                const shown = [...document.querySelectorAll('button, select, input, summary, .row .name')]
                    .filter((each) => each.checkVisibility() && !each.closest('.row[hidden]'));
                return [shown.length < 20, document.documentElement.scrollWidth > innerWidth]
                    .concat(shown.filter((each) => each.getBoundingClientRect().right > innerWidth
                        || each.getBoundingClientRect().left < 0).map((each) => each.outerHTML));""")
            self.assertEqual(outside, [False, False], width)
        page.run("dispatchEvent(new Event('beforeprint'))")
        page.driver.execute_cdp_cmd("Emulation.setEmulatedMedia", {"media": "print"})
        self.assertEqual(page.text("#print").split("\n\n")[:2], ["FAV1", f"1 {names[0]}"])
        self.assertFalse(page.find("main").is_displayed())


class Strangers(Story):
    def ask(self, method, path, headers=None, body=None):
        connection = http.client.HTTPConnection("127.0.0.1", self.world.port, timeout=10)
        self.addCleanup(connection.close)
        connection.putrequest(method, path, skip_host="Host" in (headers or {}))
        for name, value in (headers or {}).items():
            connection.putheader(name, value)
        if body is not None:
            connection.putheader("Content-Length", str(len(body)))
        connection.endheaders(body)
        answer = connection.getresponse()
        return answer.status, answer.getheader("Set-Cookie"), answer.read()

    def test_only_the_page_of_the_session_reads_and_writes(self):
        world = self.world
        address = world.serve()
        key = address.split("key=")[1]
        status, cookie, _ = self.ask("GET", f"/?key={key}")
        self.assertEqual(status, 200)
        for word in ("HttpOnly", "SameSite=Strict"):
            self.assertIn(word, cookie)
        cookie, *_, path = cookie.split("; ")
        place = path.removeprefix("Path=")
        self.assertRegex(place, "^/[0-9a-f]{32}/$")  # browsers send the cookie nowhere else
        home = f"127.0.0.1:{world.port}"
        own = {"Cookie": cookie, "Origin": f"http://{home}", "Content-Type": "application/json"}
        listed = json.loads(self.ask("GET", place + "api/lists", {"Cookie": cookie})[2])["content"]
        fav1, version = listed["lists"][0]["uuid"], listed["lists"][0]["version"]
        emptied = json.dumps({"lists": [{"uuid": fav1, "version": version, "entries": []}]}).encode()
        before = world.content("FAV1")
        cases = [
            ("no cookie", "GET", place + "api/lists", {}, 403),
            ("a wrong cookie", "GET", place + "api/lists", {"Cookie": cookie[:-1] + "x"}, 403),
            ("a wrong key", "GET", "/?key=" + "0" * 32, {}, 403),
            ("a foreign name", "GET", place + "api/lists", {"Cookie": cookie, "Host": "evil.example"}, 403),
            ("a name and our port", "GET", "/", {"Cookie": cookie, "Host": f"evil.example:{world.port}"}, 403),
            ("the key by a foreign name", "GET", f"/?key={key}", {"Host": "evil.example"}, 403),
            ("a foreign page", "POST", place + "api/save", {**own, "Origin": "http://evil.example"}, 403),
            ("another port", "POST", place + "api/save", {**own, "Origin": "http://127.0.0.1:1"}, 403),
            ("no origin", "POST", place + "api/save", {"Cookie": cookie, "Content-Type": "application/json"}, 403),
            ("a form", "POST", place + "api/save", {**own, "Content-Type": "text/plain"}, 400),
            ("a foreign fetch", "GET", place + "api/lists", {"Cookie": cookie, "Sec-Fetch-Site": "same-site"}, 403),
            ("parts without end", "GET", place, {"Cookie": cookie, "Range": "bytes=0-,0-"}, 200),
            ("a path of the disk", "GET", place + "../../../etc/passwd", {"Cookie": cookie}, 404),
            ("a file of the page with dots", "GET", place + "..%2f..%2fetc%2fpasswd", {"Cookie": cookie}, 404),
        ]
        for name, method, path, headers, expected in cases:
            body = emptied if method == "POST" else None
            status, set_cookie, _ = self.ask(method, path, headers, body)
            self.assertEqual((status, set_cookie), (expected, None), name)
        list_of = emptied.decode()[len('{"lists": ['):-2]
        first = listed["lists"][0]["rows"][0][0]
        for body in (b"{", b"[]", b'{"lists": 7}', b'{"lists": [{"uuid": 1}]}',
                     emptied.replace(version.encode(), b"1"),
                     emptied.replace(b"[]", b"{}"),
                     emptied.replace(b"[]", f"[[{first}, 0, 0]]".encode()),
                     emptied.replace(b"[]", f"[[{first + 2 ** 32}, 1, 0]]".encode()),
                     f'{{"lists": [{list_of}, {list_of}]}}'.encode()):
            self.assertNotEqual(json.loads(self.ask("POST", place + "api/save", own, body)[2])
                                .get("written"), True, body)
        long = self.ask("POST", place + "api/save", {**own, "Content-Length": "9000000"})
        self.assertEqual(long[0], 413)  # at once: what follows is not waited for
        packed = self.ask("POST", place + "api/save", {**own, "Content-Encoding": "gzip"},
                          gzip.compress(emptied))
        self.assertEqual(packed[0], 400)  # a short one could be very long
        status = 400
        with contextlib.suppress(OSError):  # it may be cut off before the answer is read
            status = self.ask("GET", place, {"Cookie": cookie, **dict.fromkeys(map(str, range(20000)), "")})[0]
        self.assertEqual(status, 400)  # a head without an end
        self.assertEqual(world.content("FAV1"), before)
        self.assertEqual(self.ask("POST", place + "api/save", own, emptied)[0], 200)  # they all could have
        self.assertEqual(world.content("FAV1"), [])

    def test_a_port_that_cannot_be_had_is_told(self):
        with socket.create_server(("127.0.0.1", 0)) as taken, socket.socket() as low:
            with contextlib.suppress(PermissionError):
                low.bind(("127.0.0.1", 80))
                low.listen()
            for port in (taken.getsockname()[1], 80):
                told = subprocess.run([SERVER, "--db", self.world.database, "--port", str(port)],
                                      check=False, timeout=20, capture_output=True, text=True)
                self.assertEqual((told.returncode, told.stdout), (1, ""))
                self.assertIn(f"port {port} ", told.stderr)

    def test_slow_clients_hold_up_nobody(self):
        self.world.serve()
        slow = [socket.create_connection(("127.0.0.1", self.world.port)) for _ in range(200)]
        for client in slow:
            self.addCleanup(client.close)
            client.sendall(b"GET / HTTP/1.1\r\n")

        def drip():  # until the server has had enough of it
            with contextlib.suppress(OSError):
                while True:
                    for client in slow:
                        client.sendall(b"a: b\r\n")
                    time.sleep(0.5)

        dripping = threading.Thread(target=drip)
        dripping.start()
        page = self.world.browser()
        dripping.join(10)
        self.assertFalse(dripping.is_alive())
        self.assertEqual(page.rows(0)[0][1], "NPO 1")

    def test_a_foreign_page_in_the_browser_writes_nothing(self):
        world, page, before = self.begin()
        target, body = page.driver.current_url + "api/save", page.emptying()
        page.driver.get("data:text/html,<h1>foreign</h1>")
        page.run("""fetch(arguments[0], {method: 'POST', mode: 'no-cors', credentials: 'include',
                 body: arguments[1]}).catch(() => 0);""", target, body)
        time.sleep(0.5)
        self.assertEqual(world.names("FAV1"), before)

    def test_names_are_text(self):
        evil = "<img src=x onerror=document.title='pwned'>\u202eevil"
        self.world.execute("UPDATE Service SET Name = ?, ShortName = ?, ServiceName = ?"
                           " WHERE Name = 'NPO 1'", evil, evil, evil)
        world, page, _ = self.begin()
        name = page.rows(0)[0][1]
        self.assertTrue(name.startswith("<img src=x"))
        self.assertNotIn("\u202e", name)
        page.run("document.querySelector('.pane .row').click()")
        page.press("down", 0)
        page.press("show-changes")
        self.assertEqual(page.run("return document.querySelectorAll('img').length"), 0)
        page.find("#changes button").click()
        page.save()
        self.assertNotIn("pwned", page.driver.title)
        self.assertEqual(world.content("FAV1")[1], (2, evil))
