"""Real programs in a virtual display: what the tour and the tests with real keyboard and mouse share."""

import atexit
import contextlib
import hashlib
import html
import http.server
import os
import signal
import subprocess
import threading
import time
import urllib.request


def wait_for(what, condition, seconds=15):
    end = time.monotonic() + seconds
    while time.monotonic() < end:
        result = condition()
        if result:
            return result
        time.sleep(0.02)
    raise SystemExit(f"Waited in vain for {what}.")


def begin(*arguments, **keywords):
    """A process that does not outlive this one, however this one ends by itself."""
    process = subprocess.Popen(*arguments, **keywords)
    atexit.register(process.kill)
    return process


class Requests:
    """Requests to the service at that URL."""

    def __init__(self, url):
        self.url = url

    def account(self, email, password):
        self.post(f"p1=create-new-user&p2={email}&p3={password}&p4=Tour&type=json")

    def ask(self, kind, login, password, more=""):
        return self.post(f"p1={kind}&p2={md5(login)}&p3={md5(password)}{more}")

    def texts(self, element, kind, login, password, more=""):
        """The texts of all elements of that name in the answer, in order."""
        parts = self.ask(kind, login, password, more).split(f"<{element}>")[1:]
        return [html.unescape(part.split(f"</{element}>")[0]) for part in parts]

    def post(self, body):
        opener = urllib.request.build_opener(urllib.request.ProxyHandler({}))
        with opener.open(self.url, body.encode(), timeout=10) as answer:
            return answer.read().decode()


class Service(Requests):
    """A tarvex-server with the sample account, on that address or, without one, on a port of its own."""

    def __init__(self, server, folder, address="127.0.0.1:0"):
        self.server, self.database = server, f"sqlite:{folder}/service.db"
        subprocess.run([server, "sample", "--database", self.database], check=True, stdout=subprocess.DEVNULL)
        self.start(address)

    def start(self, address):
        command = [self.server, "serve", "--listen", address, "--database", self.database]
        self.process = begin(command, stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, text=True)
        ready = self.process.stdout.readline()
        if not ready.startswith("READY"):
            raise SystemExit(f"{address} is needed for a service of its own; is another one running there?")
        self.url = ready.split()[1]
        self.address = self.url.split("/")[2]

    @contextlib.contextmanager
    def held(self):
        """Requests are received and get no answer meanwhile."""
        self.process.send_signal(signal.SIGSTOP)
        yield
        self.process.send_signal(signal.SIGCONT)

    @contextlib.contextmanager
    def gone(self):
        """Nobody listens meanwhile."""
        self.stop()
        yield
        self.start(self.address)

    @contextlib.contextmanager
    def replaced(self, answer, known=None):
        """Another service stands in meanwhile, which gives that answer to all kinds of request not known."""

        class Handler(http.server.BaseHTTPRequestHandler):
            def do_POST(self):
                form = self.rfile.read(int(self.headers["Content-Length"])).decode()
                kind = form.split("&")[0].removeprefix("p1=")
                body = (known or {}).get(kind, answer).encode()
                self.send_response(200)
                self.send_header("Content-Length", str(len(body)))
                self.end_headers()
                self.wfile.write(body)

            def log_message(self, *_):
                pass

        host, port = self.address.split(":")
        with self.gone(), http.server.HTTPServer((host, int(port)), Handler) as server:
            threading.Thread(target=server.serve_forever, daemon=True).start()
            yield
            server.shutdown()

    def stop(self):
        self.process.terminate()
        self.process.wait(timeout=20)
        self.process.stdout.close()


def md5(text):
    return hashlib.md5(text.encode()).hexdigest().upper()


def wire(text):
    for character, token in {"?": "quest", "]": "cbc", "[": "cbo", "&": "amp", ":": "dp", ";": "dc", ".": "d",
                             ",": "c", "`": "bq1", ">": "tbc", "<": "tbo", "%": "prcnt", "/": "slr", "\\": "sll",
                             "^": "v", "$": "buks", "@": "woof", "~": "-", "|": "l"}.items():
        text = text.replace(character, f"{{_{token}_}}")
    return text


class Display:
    """A virtual display with a window manager in it; `name` is what DISPLAY is set to."""

    def __init__(self, width, height):
        reading, writing = os.pipe()
        # Without -noreset the first client that leaves would reset the display under the window manager's start.
        self.server = begin(
            ["Xvfb", "-displayfd", str(writing), "-screen", "0", f"{width}x{height}x24", "-nolisten", "tcp", "-wr",
             "-noreset"],
            pass_fds=[writing], stderr=subprocess.DEVNULL)
        os.close(writing)
        with os.fdopen(reading) as pipe:
            self.name = f":{pipe.readline().strip()}"
        self.manager = begin(["openbox"], env=self.environment(), stdout=subprocess.DEVNULL,
                             stderr=subprocess.DEVNULL)
        wait_for("the window manager", lambda: b"window id" in subprocess.run(
            ["xprop", "-root", "_NET_SUPPORTING_WM_CHECK"], env=self.environment(), capture_output=True).stdout)

    def environment(self, **more):
        return {**os.environ, "DISPLAY": self.name, "QT_QPA_PLATFORM": "xcb", **more}

    def window(self, title):
        found = subprocess.run(["xdotool", "search", "--onlyvisible", "--name", f"^{title}$"],
                               env=self.environment(), capture_output=True, text=True).stdout.split()
        return found[-1] if found else None

    def active(self, title):
        name = subprocess.run(["xdotool", "getactivewindow", "getwindowname"], env=self.environment(),
                              capture_output=True, text=True).stdout.strip()
        return name == title

    def middle(self, title):
        """How far from the left the middle of the window of that title is, in pixels."""
        shown = subprocess.run(["xdotool", "getwindowgeometry", "--shell", self.window(title)],
                               env=self.environment(), capture_output=True, text=True, check=True).stdout
        place = dict(line.split("=") for line in shown.split())
        return int(place["X"]) + int(place["WIDTH"]) // 2

    def keys(self, *names):
        """Presses keys one after the other, as fast as a person would: a button shows its press for a moment."""
        subprocess.run(["xdotool", "key", "--delay", "120", *names], env=self.environment(), check=True)

    def click(self, title, x, y, button=1):
        """Clicks at a place inside the window of that title."""
        subprocess.run(["xdotool", "mousemove", "--window", self.window(title), str(x), str(y), "click", str(button)],
                       env=self.environment(), check=True)

    def type(self, text):
        subprocess.run(["xdotool", "type", "--delay", "8", text], env=self.environment(), check=True)

    def picture(self, path):
        subprocess.run(["import", "-window", "root", "-silent", str(path)], env=self.environment(), check=True)
        subprocess.run(["mogrify", "-trim", "+repage", str(path)], check=True)

    def stop(self):
        for process in (self.manager, self.server):
            process.terminate()
            process.wait()


class AccessibleDesktop:
    """What assistive tools see of the programs in a display, and can do there."""

    def __init__(self, display):
        os.environ["DISPLAY"] = display.name
        launcher = begin(["/usr/libexec/at-spi-bus-launcher", "--launch-immediately"], stdout=subprocess.DEVNULL,
                         stderr=subprocess.DEVNULL, start_new_session=True)
        atexit.register(os.killpg, launcher.pid, signal.SIGTERM)  # with the bus that it starts
        import pyatspi  # reads the environment

        self.desktop, self.showing = pyatspi.Registry.getDesktop(0), pyatspi.STATE_SHOWING

    def look(self, name, role, within=None):
        def here(node):
            if node.name == name and node.getRoleName() == role and node.getState().contains(self.showing):
                return node
            return next((found for child in node if child and (found := here(child))), None)

        try:
            return here(within or self.desktop)
        except Exception:  # the tree changes while it is walked
            return None

    def find(self, name, role, within=None):
        return wait_for(f"the {role} {name!r}", lambda: self.look(name, role, within))

    def ends(self, sheet):
        wait_for(f"the end of {sheet!r}", lambda: not self.look(sheet, "dialog"))

    def act(self, name, role, action="Press", within=None):
        actions = self.find(name, role, within).queryAction()
        names = [actions.getName(i) for i in range(actions.nActions)]
        if action not in names:
            raise SystemExit(f"The {role} {name!r} offers {names}, not {action}.")
        actions.doAction(names.index(action))

    def write(self, name, text, role="text", within=None):
        self.find(name, role, within).queryEditableText().setTextContents(text)
