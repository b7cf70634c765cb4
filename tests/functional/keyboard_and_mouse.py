"""The client and the service as built, worked with real keys and a real mouse under a window manager.

What the user did is then read back from the service itself.
usage: keyboard_and_mouse.py SERVER CLIENT
"""

import pathlib
import subprocess
import sys
import tempfile

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[2] / "tools"))
from desktop import Display, Service, wait_for, wire  # noqa: E402

ADDRESS = "127.0.0.1:8719"  # what the client of this test is built for
MAIN = "Tarvex Cloud - Client for Mac OS X"
SAMPLE = ("sample@example.org", "wheel of life")


class User:
    def __init__(self, display, service):
        self.display, self.service = display, service

    def sees(self, title):
        wait_for(f"the window {title!r} to be active", lambda: self.display.active(title))

    def expects(self, expected, element, kind, more="", last=False):
        def arrived():
            texts = self.service.texts(element, kind, *SAMPLE, more)
            found.append(texts[-1] if last else texts)
            return found[-1] == expected

        found = []
        try:
            wait_for(kind, arrived, seconds=5)
        except SystemExit:
            raise SystemExit(f"{kind}: {element} is {found[-1]}, not {expected}") from None

    def signs_in(self):
        self.sees("Sign In")
        self.display.type(SAMPLE[0])
        self.display.keys("Tab")
        self.display.type(SAMPLE[1])
        self.display.keys("Return")
        self.sees(MAIN)

    def edits_an_area(self):
        where = "&p4=%s&p5=%s" % (self.service.texts("id", "get-sets", *SAMPLE)[0],
                                  self.service.texts("id", "get-areas", *SAMPLE)[1])
        names = self.service.texts("name", "get-goals", *SAMPLE, where)
        values = self.service.texts("value", "get-areas", *SAMPLE)
        self.display.click(MAIN, 530, 300)  # the second slice
        self.sees(self.service.texts("name", "get-areas", *SAMPLE)[1])
        self.display.keys("alt+a")
        self.display.type("Learn to juggle")
        self.display.keys("Return", "space", "alt+v", "End", "alt+s")
        self.sees(MAIN)
        self.expects([*names, "Learn to juggle"], "name", "get-goals", where)
        self.expects("y", "checked", "get-goals", where, last=True)
        self.expects([values[0], "8", *values[2:]], "value", "get-areas")

    def manages_sets(self):
        names = self.service.texts("name", "get-sets", *SAMPLE)
        self.display.keys("ctrl+shift+n")
        self.sees("New Set")
        self.display.type("Winter & more")
        self.display.keys("Return")
        self.sees(MAIN)
        self.expects([names[0], "Winter {_amp_} more", *names[1:]], "name", "get-sets")
        self.display.keys("F2")
        self.sees("Rename Set")
        self.display.keys("ctrl+a")
        self.display.type("Winter")
        self.display.keys("Return")
        self.sees(MAIN)
        self.expects([names[0], "Winter", *names[1:]], "name", "get-sets")
        self.display.keys("alt+s", "d")
        self.sees("Delete?")
        self.display.keys("Return")
        self.sees(MAIN)
        self.expects(names, "name", "get-sets")

    def renames_an_area(self):
        names = self.service.texts("name", "get-areas", *SAMPLE)
        self.display.keys("ctrl+shift+r")
        self.sees("Rename Areas")
        self.display.keys("Tab", "Tab", "ctrl+a")
        self.display.type("Money: all of it")
        self.display.keys("Return")
        self.sees(MAIN)
        self.expects([*names[:2], "Money{_dp_} all of it", *names[3:]], "name", "get-areas")


def main():
    server, client = sys.argv[1:]
    with tempfile.TemporaryDirectory() as folder:
        service = Service(server, folder, ADDRESS)
        display = Display(1000, 800)
        process = subprocess.Popen([client], env=display.environment(XDG_RUNTIME_DIR=folder))
        try:
            user = User(display, service)
            user.signs_in()
            user.edits_an_area()
            user.manages_sets()
            user.renames_an_area()
            display.keys("ctrl+q")
            if process.wait(timeout=10) != 0:
                raise SystemExit("The client did not end well.")
        finally:
            process.kill()
            display.stop()
            service.stop()


if __name__ == "__main__":
    main()
