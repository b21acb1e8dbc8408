"""What the page costs with 20,000 services; scripts/benchmark-page runs it."""
import os
import sys
import time

from selenium.webdriver.common.action_chains import ActionChains

from page_world import SAMPLE, World

SERVICES = 20000


def main():
    world = World(SERVICES)
    try:
        world.tool("import", "--favourites", os.path.join(os.path.dirname(SAMPLE), "favourites.conf"))
        world.serve()
        page = world.browser()
        first = []
        for _ in range(5):
            page.driver.refresh()
            first.append(page.wait(lambda: page.run("return window.firstList")))
            page.wait(lambda: len(page.rows(1)) > 5, 60)
        time.sleep(1)
        page.run("""
            window.tasks = [];
            new PerformanceObserver((list) => window.tasks.push(...list.getEntries()
                .map((entry) => entry.duration))).observe({type: 'longtask'});""")
        page.run("""
            const list = document.querySelectorAll('.scroller')[1];
            let step = 0;
            const scroll = () => {
                list.scrollTop = (step * 7919) % list.scrollHeight;
                if (++step < 120) requestAnimationFrame(scroll); else window.scrolled = true;
            };
            scroll();""")
        page.wait(lambda: page.run("return window.scrolled"), 60)
        scrolling = page.run("return window.tasks.splice(0)")
        rows = page.panes()[1].find_elements("css selector", ".row:not([hidden])")
        ActionChains(page.driver, duration=20).move_to_element(rows[12]).click_and_hold() \
            .move_by_offset(0, 12).move_by_offset(-200, 40).move_by_offset(-200, -20) \
            .move_by_offset(150, 30).perform()
        dragging = page.run("return window.tasks.splice(0)")
        ActionChains(page.driver).release().perform()
        for name, tasks in (("scrolling", scrolling), ("dragging", dragging)):
            print(f"{name:10} longest task over 50 ms: {max(tasks, default=0):.0f} ms ({len(tasks)})")
        print(f"first list on the screen after {sorted(first)[2]:.0f} ms (median of 5)")
    finally:
        world.close()


if __name__ == "__main__":
    sys.exit(main())
