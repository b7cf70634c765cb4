#!/usr/bin/python3
"""Uses the service's pages in a browser, as people do: without script, by the keyboard, on a phone and on a desk.

    pages.py SERVER            the flows, each page's markup, and no request to any other host
    pages.py SERVER AXE.js     the rules of accessibility instead, in light and dark
"""

import contextlib
import json
import pathlib
import re
import subprocess
import sys
import tempfile
import time
import urllib.error
import urllib.parse
import urllib.request

from selenium import webdriver
from selenium.common.exceptions import WebDriverException
from selenium.webdriver.chrome.service import Service
from selenium.webdriver.common.by import By
from selenium.webdriver.common.keys import Keys

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[2] / "tools"))
import desktop  # noqa: E402

SIZES = {"phone": (390, 844, True), "desk": (1280, 900, False)}
LOGIN, PASSWORD = "sample@example.org", "wheel of life"
PAGES = ("/", "/sign-in", "/sign-up", "/wheel", "/progress", "/progress/compare", "/account", "/account/deleted",
         "/account/close", "/nowhere")


def ask(site, kind, **fields):
    """A request of the desktop program."""
    return site.ask(kind, LOGIN, PASSWORD, "".join(f"&{key}={fields[key]}" for key in fields))


class Browser:
    def __init__(self, site, size, has_script=False):
        options = webdriver.ChromeOptions()
        options.binary_location = "/usr/bin/chromium"
        for argument in ("--headless=new", "--no-sandbox", "--disable-gpu", "--disable-dev-shm-usage"):
            options.add_argument(argument)
        options.set_capability("goog:loggingPrefs", {"performance": "ALL", "browser": "ALL"})
        if not has_script:
            options.add_experimental_option("prefs", {"profile.managed_default_content_settings.javascript": 2})
        self.driver = webdriver.Chrome(options=options, service=Service("/usr/bin/chromedriver"))
        width, height, is_phone = SIZES[size]
        self.driver.execute_cdp_cmd("Emulation.setDeviceMetricsOverride",
                                    {"width": width, "height": height, "deviceScaleFactor": 1, "mobile": is_phone})
        self.width, self.url = width, f"http://{site.address}"

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self.driver.quit()

    def go(self, path):
        self.driver.get(self.url + path)

    def prefer(self, scheme):
        self.driver.execute_cdp_cmd("Emulation.setEmulatedMedia",
                                    {"features": [{"name": "prefers-color-scheme", "value": scheme}]})

    def text(self):
        return self.driver.find_element(By.TAG_NAME, "body").text

    def expect(self, words, then=None):
        """Waits for the page that says so, and goes on from there."""
        deadline = time.monotonic() + 15
        while True:
            try:
                if words in self.text():
                    return then and self.choose(then)
            except WebDriverException:  # it gives way to the next one, which chromedriver has several words for
                pass
            assert time.monotonic() < deadline, f"{words!r} is not in {self.driver.current_url}:\n{self.text()}"
            time.sleep(0.05)

    def press(self, *keys):
        self.driver.switch_to.active_element.send_keys(*keys)

    def tab_to(self, name):
        """Moves on by the keyboard until something of that name has the focus."""
        for _ in range(120):
            self.press(Keys.TAB)
            focused = self.driver.switch_to.active_element
            if name in (focused.get_attribute("name"), focused.get_attribute("id"), focused.text.strip()):
                return
        raise AssertionError(f"no {name!r} can be reached in {self.driver.current_url}")

    def send(self, **fields):
        for name, text in fields.items():
            self.tab_to(name)
            self.press(text)
        self.press(Keys.ENTER)

    def choose(self, name):
        self.tab_to(name)
        self.press(Keys.ENTER)

    def sign_in(self, password=PASSWORD, login=LOGIN):
        self.go("/sign-in")
        self.send(login=login, password=password)

    def fits(self):
        content = self.driver.execute_cdp_cmd("Page.getLayoutMetrics", {})["cssContentSize"]["width"]
        assert content <= self.width, f"{self.driver.current_url} is {content} wide on {self.width}"

    def source(self, path):
        """The page as the service sends it to this browser."""
        cookies = "; ".join(f"{cookie['name']}={cookie['value']}" for cookie in self.driver.get_cookies())
        try:
            with urllib.request.urlopen(urllib.request.Request(self.url + path, headers={"Cookie": cookies})) as answer:
                return answer.read().decode()
        except urllib.error.HTTPError as answer:
            return answer.read().decode()

    def hosts(self):
        """All that the browser asked anything of."""
        messages = [json.loads(entry["message"])["message"] for entry in self.driver.get_log("performance")]
        asked = [message["params"]["request"]["url"] for message in messages
                 if message["method"] == "Network.requestWillBeSent"]
        return {urllib.parse.urlsplit(url).netloc for url in asked if url.startswith("http")}


def markup_faults(page):
    """What is wrong with a page but for what the checker is too old to know."""
    told = subprocess.run(["tidy", "-errors", "-quiet"], input=page, capture_output=True, text=True).stderr
    return [line for line in told.splitlines() if "proprietary attribute" not in line]


def use(site, size):
    with Browser(site, size) as browser:
        browser.go("/")
        browser.expect("How well does it go?", then="Sign up")
        browser.send(name="Ben <b>", email=f"ben.{size}@example.org", password="secret", again="secret")
        browser.expect("My wheel")
        browser.expect("100% done on average", then="My account")
        browser.expect("Signed in as Ben <b>", then="Sign out")
        browser.expect("You are signed out.")
        browser.driver.back()
        browser.driver.refresh()
        assert "Ben <b>" not in browser.text(), "the way back leads into the account"

        browser.sign_in(password="wrong")
        browser.expect("The login or the password is wrong.")
        browser.sign_in()
        browser.expect("My wheel")
        goal = browser.driver.find_element(By.CSS_SELECTOR, ".goals button").text.split("\n")[0].removesuffix(" low")
        browser.choose("goal")
        browser.expect("The goal is done.")
        done = [item.text for item in browser.driver.find_elements(By.CSS_SELECTOR, "li.done")]
        assert any(goal in text for text in done), f"{goal!r} is not among {done}"

        ask(site, "create-sets", p4=f"For a {size}")
        made = re.findall("<id>(.*?)</id>", ask(site, "get-sets"))[1]
        ask(site, "create-goal", p4="Come back", p5=5, p6=0, p7=made, p8=1)
        browser.go(f"/wheel?set={made}")
        browser.expect("Come back")
        ask(site, "delete-sets", p4=made)
        browser.driver.refresh()
        browser.expect("It was deleted meanwhile", then="what was deleted")
        browser.tab_to("set")
        browser.press(Keys.SPACE)
        browser.choose("Take back what is chosen")
        browser.expect("What you chose is back.")
        assert f"For a {size}" in ask(site, "get-sets") and "Come back" in ask(site, "get-goals", p4=made, p5=1)

        browser.choose("Progress")
        browser.expect("Day by day", then="Compare")
        browser.expect("Two wheels")
        for path in PAGES:
            browser.go(path)
            browser.fits()
            faults = markup_faults(browser.source(path))
            assert not faults, f"{path}: {faults}"
        assert browser.hosts() <= {site.address}, browser.hosts()
        refused = [entry["message"] for entry in browser.driver.get_log("browser")
                   if "Content Security Policy" in entry["message"]]
        assert not refused, refused


def close_and_keep(site):
    with Browser(site, "desk") as browser:
        browser.sign_in()
        browser.choose("My account")
        browser.choose("Close the account")
        browser.send(password=PASSWORD)
        browser.expect("Your account is closed.")
        assert ask(site, "sign-in") != "OK"
        browser.sign_in()
        browser.expect("This account is closed", then="Keep the account")
        browser.expect("Your account is kept")
        assert ask(site, "sign-in") == "OK"


def accessibility_faults(site, axe):
    ask(site, "delete-sets", p4=2)
    found = []
    with Browser(site, "phone", has_script=True) as browser:
        for is_owner in (False, True):
            if is_owner:
                browser.sign_in()
            for scheme in ("light", "dark"):
                browser.prefer(scheme)
                for path in PAGES:
                    browser.go(path)
                    browser.driver.execute_script(axe)
                    result = browser.driver.execute_async_script("axe.run().then(arguments[arguments.length - 1])")
                    assert len(result["passes"]) > 5, f"hardly anything was looked at in {path}"
                    found += [f"{path} ({scheme}): {fault['id']}: {node['html'][:150]}"
                              for fault in result["violations"] for node in fault["nodes"]]
    return found


def main():
    with tempfile.TemporaryDirectory() as folder, contextlib.ExitStack() as ends:
        site = desktop.Service(pathlib.Path(sys.argv[1]).resolve(), folder)
        ends.callback(site.stop)
        if len(sys.argv) > 2:
            found = accessibility_faults(site, pathlib.Path(sys.argv[2]).read_text())
            print("\n".join(found) or "No page breaks a rule of accessibility.")
            sys.exit(bool(found))
        for size in SIZES:
            use(site, size)
        close_and_keep(site)


if __name__ == "__main__":
    main()
