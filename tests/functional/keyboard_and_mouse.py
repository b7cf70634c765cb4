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

    def marks_a_random_goal_done(self):
        def goals_of_first_set(element):
            first = self.service.texts("id", "get-sets", *SAMPLE)[0]
            return self.service.texts(element, "get-complex-goals-for-sets", *SAMPLE, f"&p4={first}")

        before = goals_of_first_set("checked").count("y")
        self.display.keys("ctrl+g")
        self.sees("Random Goal")
        self.display.keys("alt+d")
        wait_for("the goal to be done", lambda: goals_of_first_set("checked").count("y") == before + 1)
        self.display.keys("Escape")
        self.sees(MAIN)

    def keeps_the_report_of_another_set(self, path):
        second = self.service.texts("id", "get-sets", *SAMPLE)[1]
        kind = ("get-complex-goals-for-sets", *SAMPLE, f"&p4={second}")
        goals = list(zip(self.service.texts("area", *kind), self.service.texts("name", *kind)))
        self.display.keys("alt+e", "Down", "alt+f", "d")
        self.sees("Save as PDF")
        self.display.keys("ctrl+a")
        self.display.type(path)
        self.display.keys("Return")
        self.sees(MAIN)
        printed = wire(subprocess.run(["pdftotext", "-raw", path, "-"], capture_output=True, text=True, check=True).stdout)
        expected = [name for area in self.service.texts("id", "get-areas", *SAMPLE) for of, name in goals if of == area]
        at = 0
        for name in expected:
            at = printed.find(name, at)
            if at < 0:
                raise SystemExit(f"{name} is missing from the report, or in the wrong place:\n{printed}")
        if not expected:
            raise SystemExit("There was nothing to print.")


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
            user.marks_a_random_goal_done()
            user.keeps_the_report_of_another_set(f"{folder}/report.pdf")
            display.keys("ctrl+q")
            if process.wait(timeout=10) != 0:
                raise SystemExit("The client did not end well.")
        finally:
            process.kill()
            display.stop()
            service.stop()


if __name__ == "__main__":
    main()
