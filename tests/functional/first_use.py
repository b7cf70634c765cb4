"""A whole first use of the client, from signing up to the printed report, by keys or by assistive tools alone.

What the user did is then read back from the service itself.
usage: first_use.py SERVER CLIENT keys|assistive
"""

import pathlib
import subprocess
import sys
import tempfile
import time

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[2] / "tools"))
from desktop import AccessibleDesktop, Display, Service, begin, wait_for  # noqa: E402

MAIN = "Tarvex Cloud - Client for Mac OS X"
NEW = ("Zoe+1@Example.org", "a&b=c+d%41&p3=x \"'\\?")
AREA = "Career and Business"  # the second of a new account


class Keys:
    """Nothing but the keyboard."""

    def __init__(self, display):
        self.display = display

    def sees(self, title):
        wait_for(f"the window {title!r} to be active", lambda: self.display.active(title))

    def press(self, *keys):
        """One after the other, each once nothing moves any more, as a person does."""
        for key in keys:
            self.display.keys(key)
            self.settles()

    def type(self, text):
        self.display.type(text)
        self.settles()

    def settles(self):
        before = None
        while before != (before := self.work_done()):
            time.sleep(0.1)

    def work_done(self):
        """The processor's time that the client has used."""
        return pathlib.Path(f"/proc/{self.client.pid}/stat").read_text().rpartition(")")[2].split()[11:13]

    def signs_up(self):
        self.sees("Sign In")
        self.press("alt+c")
        self.sees("Create Account")
        for text in ("Zoe & co=1", NEW[0], NEW[1], NEW[1]):
            self.type(text)
            self.press("Tab")
        with self.service.gone():
            self.press("Return")
            self.sees("Tarvex Cloud")
        alert, sheet = self.display.middle("Tarvex Cloud"), self.display.middle("Create Account")
        assert abs(alert - sheet) < 5, f"the alert's middle is at {alert}, that of its sheet at {sheet}"
        for title in ("Create Account", MAIN):
            self.press("Return")
            self.sees(title)

    def edits_the_area(self):
        self.press("alt+e", "Tab", "Right", "Return")
        self.sees(AREA)
        for goal in ("Learn to juggle", "Ask for a rise"):
            self.press("alt+a")
            self.type(goal)
            self.press("Return")
        self.press("Up", "space", "alt+v", "End", "alt+s")
        self.sees(MAIN)

    def marks_a_random_goal_done(self):
        self.press("ctrl+g")
        self.sees("Random Goal")
        self.press("alt+d")
        wait_for("the sheet to close", lambda: self.display.active(MAIN) or self.press("Escape"))

    def keeps_the_report(self, path):
        self.press("alt+f", "d")
        self.sees("Save as PDF")
        self.press("ctrl+a")
        self.type(path)
        self.press("Return")
        self.sees(MAIN)

    def quits(self):
        self.display.keys("ctrl+q")


class Assistive(AccessibleDesktop):
    """Nothing but what assistive tools can do: press, set texts, set values."""

    def chooses(self, command):
        self.act("File", "menu item", "ShowMenu")
        self.act(command, "menu item")

    def signs_up(self):
        self.act("Create Account…", "push button")
        sheet = self.find("Create Account", "dialog")
        for field, text in [("Name", "Zo\u00EB"), ("E-mail", NEW[0])]:
            self.write(field, text, within=sheet)
        for field in ("Password", "Password again"):
            self.write(field, NEW[1], role="password text", within=sheet)
        self.act("Create Account", "push button", within=sheet)

    def edits_the_area(self):
        self.act(AREA, "push button")
        sheet = self.find(AREA, "dialog")
        for goal in ("Learn to juggle", "Ask for a rise"):
            self.act("Add Goal", "push button", within=sheet)
            self.write("Goal text", goal, within=sheet)
            self.act("Keep Text", "push button", within=sheet)
            self.find(goal, "table cell", within=sheet)  # a press takes a moment
        self.act("Not done", "table cell", "Toggle", within=sheet)
        self.find("Value", "slider", within=sheet).queryValue().currentValue = 8
        self.act("Save", "push button", within=sheet)
        self.ends(AREA)
        self.find(f"{AREA} was saved.", "notification")

    def marks_a_random_goal_done(self):
        self.act("Random Goal", "push button")
        sheet = self.find("Random Goal", "dialog")
        self.act("Mark as Done", "push button", within=sheet)
        self.find("No goal is left in this set: all are done, or it has none.", "notification", within=sheet)
        self.act("Close", "push button", within=sheet)
        self.ends("Random Goal")

    def keeps_the_report(self, path):
        self.chooses("Save as PDF…")
        sheet = self.find("Save as PDF", "dialog")
        self.write("File name:", path, within=sheet)
        self.act("Save", "push button", within=sheet)

    def quits(self):
        self.chooses("Quit")


def check(texts, path):
    """What the service and the file hold is what the user did."""
    areas, sets = texts("id", "get-areas"), texts("id", "get-sets")
    goals = ("get-goals", f"&p4={sets[0]}&p5={areas[1]}")
    for expected, what in [(["Learn to juggle", "Ask for a rise"], ("name", *goals)), (["y", "y"], ("checked", *goals)),
                           (["0", "8", *["0"] * 6], ("value", "get-areas")), (["100"], ("percent2", "get-sets"))]:
        assert texts(*what) == expected, f"{texts(*what)} is not {expected}"
    printed = subprocess.run(["pdftotext", "-raw", path, "-"], capture_output=True, text=True, check=True).stdout
    for line in (f"{AREA} Excellent 100%", "Learn to juggle", "Ask for a rise"):
        assert line in printed.replace("\n", " "), f"{line!r} is missing from the report:\n{printed}"


def main():
    server, client, kind = sys.argv[1:]
    with tempfile.TemporaryDirectory() as folder:
        service = Service(server, folder)
        display = Display(1000, 800)
        environment = display.environment(XDG_RUNTIME_DIR=folder, HOME=folder, QT_LINUX_ACCESSIBILITY_ALWAYS_ON="1",
                                          TARVEX_SERVICE_URL=service.url)

        def texts(element, kind, more=""):
            return service.texts(element, kind, *NEW, more)

        try:
            user = {"keys": Keys, "assistive": Assistive}[kind](display)
            user.service, user.client = service, begin([client], env=environment)
            path = f"{folder}/report.pdf"
            user.signs_up()
            user.edits_the_area()
            user.marks_a_random_goal_done()
            user.keeps_the_report(path)
            wait_for("the report", pathlib.Path(path).exists)
            check(texts, path)
            user.quits()
            assert user.client.wait(timeout=10) == 0
        finally:
            display.stop()
            service.stop()


if __name__ == "__main__":
    main()
