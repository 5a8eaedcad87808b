#!/usr/bin/env python3
"""A user's session through the real Tessaly window, driven with the mouse and the keyboard under
a virtual X display of its own.

The program starts with a fresh application folder. Three slides are built, each from the
browser panes (a background and a symbol by double click, a sound by double click) and the text
box; the second slide comes from the add button, the third from a click on the empty part of
the strip. The preview plays through to its end, File > Save As stores the message, and the close
button ends the program. A second start opens the message through File > Open and its list,
visits every slide on the strip and saves again: the message must come back as it was written.

Usage: session.py --tessaly PROGRAM [--screenshots DIR]

Needs Xvfb and xdotool; --screenshots also needs ImageMagick's import."""
import argparse
import os
import shutil
import subprocess
import sys
import tempfile
import time
import wave
import xml.etree.ElementTree as ET

HERE = os.path.dirname(os.path.abspath(__file__))
DATA = os.path.normpath(os.path.join(HERE, "..", "..", "data"))

MESSAGE_NAME = "Goodnight"
WINDOW_SIZE = (886, 488)  # the main window with the preview docked

# The three slides: background and symbol (file, row in their pane after the scroll clicks),
# the text, and the sound (file, row in the sounds pane).
SLIDES = [
    {"background": ("Blue sky.bmp", 1), "symbol": ("Arrow.gif", 0), "text": "Hello from the sky",
     "sound": ("Chime.wav", 1), "scroll": 0},
    {"background": ("Balloons.bmp", 0), "symbol": ("Balloon.gif", 1), "text": "Balloons for you",
     "sound": ("Beep.wav", 0), "scroll": 0},
    {"background": ("Night.bmp", 1), "symbol": ("Moon.gif", 1), "text": "Good night",
     "sound": ("Doorbell.wav", 2), "scroll": 12},
]

# Points of the main window, in window coordinates, from its fixed layout. The tool pages lie at
# (72, 74); a browser's tiles start 22 pixels below, under its caption.
TOOL_TAB = {"backgrounds": 0, "text": 1, "sounds": 2, "symbols": 3}
PICTURE_ROW, SOUND_ROW, TILES_TOP = 88, 48, 96
PANE_SCROLL_DOWN = (425, 261)  # the lower arrow of a pane's scroll bar: half a picture row
TEXT_BOX = (532, 240)
ADD_SLIDE = (373, 475)
EMPTY_STRIP = (400, 380)
PREVIEW_PLAY = (702, 410)
FILE_MENU = (720, 17)
CLOSE_BUTTON = (866, 18)
FIRST_MESSAGE = (60, 44)  # the first entry of the message list, in the dialog
# Items of the File menu, counted from its top (separators are skipped by the arrow keys).
FILE_OPEN, FILE_SAVE, FILE_SAVE_AS = 2, 3, 4


class SessionError(Exception):
    pass


def tool_tab(name):
    return (25, 100 + 44 * TOOL_TAB[name])


def picture_tile(row):
    return (200, TILES_TOP + PICTURE_ROW * row + PICTURE_ROW // 2)


def sound_tile(row):
    return (200, TILES_TOP + SOUND_ROW * row + SOUND_ROW // 2)


def strip_tile(index):
    return (60 + 98 * (index - 1), 380)


def wait_for(condition, what, timeout=20.0):
    """Polls `condition` until it gives a true value, which it returns."""
    end = time.monotonic() + timeout
    while True:
        value = condition()
        if value:
            return value
        if time.monotonic() > end:
            raise SessionError("waited %.0f s in vain for %s" % (timeout, what))
        time.sleep(0.05)


def language_texts():
    """The English texts of the program, by key."""
    root = ET.parse(os.path.join(DATA, "language", "tessaly", "en-us.xml")).getroot()
    return {s.get("name"): s.findtext("text", "") for s in root.iter("string")}


def sound_length_ms(name):
    with wave.open(os.path.join(DATA, "Archive", "Sounds", name), "rb") as w:
        return round(w.getnframes() * 1000 / w.getframerate())


class Display:
    """An Xvfb of our own on a free display number. A number whose lock or socket exists, whose
    server does not start, or whose socket answers for another server is passed over."""

    SCREEN = "1280x900"

    def __init__(self):
        first = 300 + os.getpid() % 500
        for number in range(first, first + 40):
            if any(os.path.exists(p % number) for p in ("/tmp/.X%d-lock", "/tmp/.X11-unix/X%d")):
                continue
            if self.start(number):
                return
        raise SessionError("no display number from %d on gave a working Xvfb" % first)

    def start(self, number):
        read, write = os.pipe()
        self.process = subprocess.Popen(
            ["Xvfb", ":%d" % number, "-displayfd", str(write), "-screen", "0",
             self.SCREEN + "x24", "-nolisten", "tcp"],
            pass_fds=(write,), stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        os.close(write)
        with os.fdopen(read) as f:
            ready = f.readline().strip()  # the server writes its number once it listens
        self.name = ":%d" % number
        size = subprocess.run(["xdotool", "getdisplaygeometry"], stdout=subprocess.PIPE,
                              stderr=subprocess.DEVNULL, text=True,
                              env=dict(os.environ, DISPLAY=self.name)).stdout.split()
        if ready == str(number) and size == self.SCREEN.split("x"):
            return True
        self.close()
        return False

    def close(self):
        if self.process.poll() is None:
            self.process.terminate()
        self.process.wait(timeout=10)


class Session:
    def __init__(self, program, display, home, shots):
        self.program, self.display, self.home, self.shots = program, display, home, shots
        self.env = {k: v for k, v in os.environ.items()
                    if k not in ("TESSALY_HOME", "XDG_DATA_HOME", "QT_QPA_PLATFORM",
                                 "TESSALY_SMOKE_REPORT", "TESSALY_QUIT_WHEN_SHOWN")}
        runtime = os.path.join(home, "runtime")
        os.makedirs(runtime, mode=0o700, exist_ok=True)
        self.env.update(DISPLAY=display, TESSALY_HOME=os.path.join(home, "tessaly"),
                        HOME=home, XDG_RUNTIME_DIR=runtime, QT_QPA_PLATFORM="xcb",
                        SDL_AUDIODRIVER="dummy", LANG="C.UTF-8")
        self.process = None
        self.window = None
        self.step = 0
        self.runs = 0
        self.log = None
        self.texts = language_texts()

    # -- xdotool ------------------------------------------------------------------------------

    def xdo(self, *args):
        run = subprocess.run(["xdotool"] + [str(a) for a in args], env=self.env,
                             stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True)
        return run.stdout.split() if run.returncode == 0 else []

    def windows(self):
        """The program's visible windows as {id: title}."""
        ids = self.xdo("search", "--onlyvisible", "--pid", self.process.pid) if self.process else []
        return {w: " ".join(self.xdo("getwindowname", w)) for w in ids}

    def click(self, point, window=None, double=False):
        x, y = point
        repeat = ["--repeat", 2, "--delay", 80] if double else []
        self.xdo("mousemove", "--window", window or self.window, x, y, "click", *repeat, 1)

    def keys(self, *names):
        self.xdo("key", "--delay", 30, *names)

    def type(self, text):
        self.xdo("type", "--delay", 20, text)

    def new_window(self, what, title=None, timeout=20.0, focus=True):
        """Waits for a window of the program other than the main window, whose title holds
        `title` when given, and with `focus` for the keyboard to go to it."""
        def found():
            for w, name in self.windows().items():
                if w != self.window:
                    return w, name
            return None
        try:
            window, name = wait_for(found, what, timeout)
        except SessionError:
            raise SessionError("%s did not appear; the program shows %s"
                               % (what, sorted(self.windows().values())))
        if title is not None and title not in name:
            raise SessionError("expected %s (a window titled %r), got one titled %r"
                               % (what, title, name))
        # A dialog takes the keyboard; keys for a menu go to the main window, which hands them to
        # the menu it shows.
        if focus:
            wait_for(lambda: self.xdo("getwindowfocus") == [window], "the keyboard on " + what, 5)
        return window

    def gone(self, window, what):
        wait_for(lambda: window not in self.windows(), what + " to close")

    def shoot(self, name):
        self.step += 1
        if not self.shots:
            return
        path = os.path.join(self.shots, "session-%d-%s.png" % (self.step, name))
        subprocess.run(["import", "-window", "root", "-crop", "%dx%d+0+0" % WINDOW_SIZE, path],
                       env=self.env, check=True)
        print("screenshot", path)

    # -- the program ------------------------------------------------------------------------------

    def start(self):
        self.runs += 1
        self.log = os.path.join(self.home, "run-%d.log" % self.runs)
        with open(self.log, "wb") as log:
            self.process = subprocess.Popen([self.program], env=self.env, cwd=self.home,
                                            stdout=log, stderr=subprocess.STDOUT)

        def main_window():
            if self.process.poll() is not None:
                raise SessionError("the program ended at start with %d:\n%s"
                                   % (self.process.returncode, self.output()))
            shown = self.windows()
            return next((w for w, name in shown.items() if name == "Tessaly"), None)
        self.window = wait_for(main_window, "the main window")
        geometry = " ".join(self.xdo("getwindowgeometry", self.window))
        if "%dx%d" % WINDOW_SIZE not in geometry:
            raise SessionError("the main window is not %dx%d with the preview docked: %s"
                               % (WINDOW_SIZE + (geometry,)))
        # Other windows at start (a box about a recovery copy, a phone warning) are not wanted.
        others = [n for w, n in self.windows().items() if w != self.window]
        if others:
            raise SessionError("unexpected windows at start: %r" % others)

    def output(self):
        """What the program of the last start wrote."""
        with open(self.log, encoding="utf-8", errors="replace") as f:
            return f.read()[-4000:]

    def file_menu(self, item):
        """Opens the File menu with a click and chooses the item-th entry."""
        self.click(FILE_MENU)
        popup = self.new_window("the File menu", focus=False)
        self.choose(popup, item)

    def choose(self, popup, item):
        self.keys(*(["Down"] * item + ["Return"]))
        self.gone(popup, "the menu")

    def answer_yes(self, what, title=None):
        box = self.new_window(what, title)
        self.keys("Return")  # the default button: Yes
        self.gone(box, what)

    def close(self):
        self.click(CLOSE_BUTTON)
        self.answer_yes("the question whether to quit")
        try:
            code = self.process.wait(timeout=20)
        except subprocess.TimeoutExpired:
            raise SessionError("the program did not end after the exit question")
        if code != 0:
            raise SessionError("the program ended with %d:\n%s" % (code, self.output()))
        self.process = None

    def kill(self):
        if self.process and self.process.poll() is None:
            self.process.kill()
            self.process.wait()

    # -- building the message ---------------------------------------------------------------------

    def pick(self, pane, tile, scroll):
        self.click(tool_tab(pane))
        for _ in range(scroll):
            self.click(PANE_SCROLL_DOWN)
        self.click(tile, double=True)

    def fill_slide(self, number, slide):
        shots = number == 1
        self.pick("backgrounds", picture_tile(slide["background"][1]), slide["scroll"])
        if shots:
            self.shoot("background")
        self.pick("symbols", picture_tile(slide["symbol"][1]), slide["scroll"])
        if shots:
            self.shoot("symbol")
        self.click(TEXT_BOX)  # the first click takes the prompt away
        self.type(slide["text"])
        if shots:
            self.shoot("text")
        self.pick("sounds", sound_tile(slide["sound"][1]), 0)
        if shots:
            self.shoot("sound")

    def build(self):
        add_title = self.texts["STR_APPEND_SLIDE"]
        for number, slide in enumerate(SLIDES, 1):
            if number == 2:
                self.click(ADD_SLIDE)
                self.answer_yes("the question whether to add a slide", add_title)
            elif number == 3:
                self.click(EMPTY_STRIP)
                self.answer_yes("the question whether to add a slide (strip)", add_title)
            self.fill_slide(number, slide)
        self.shoot("three-slides")

    def preview(self):
        """Plays the preview and waits for its end: while it plays the File menu does not open.
        Returns the File menu opened after the end, and how long the show took."""
        self.click(PREVIEW_PLAY)
        started = time.monotonic()
        self.click(FILE_MENU)
        time.sleep(0.2)
        if len(self.windows()) > 1:
            raise SessionError("the File menu opened while the preview should play")
        # The picture of the show is taken while the last slide is on.
        last_slide = sum(sound_length_ms(s["sound"][0]) for s in SLIDES[:-1]) / 1000 + 0.3
        shot = []

        def menu_open():
            shown = [w for w in self.windows() if w != self.window]
            if shown:
                return shown[0]
            if not shot and time.monotonic() - started > last_slide:
                shot.append(self.shoot("preview"))
            self.click(FILE_MENU)
            time.sleep(0.2)
            return None
        popup = wait_for(menu_open, "the end of the preview", 30)
        return popup, time.monotonic() - started

    def save_as(self, popup, name):
        self.choose(popup, FILE_SAVE_AS)
        dialog = self.new_window("the Save As dialog", self.texts["STR_DLGMSG_SAVEAS"])
        self.type(name)
        self.shoot("save-as")
        self.keys("Return")
        self.gone(dialog, "the Save As dialog")

    def open_message(self):
        self.file_menu(FILE_OPEN)
        dialog = self.new_window("the Open dialog", self.texts["STR_DLGMSG_OPEN"])
        self.shoot("open")
        self.click(FIRST_MESSAGE, window=dialog, double=True)
        self.gone(dialog, "the Open dialog")


def read_slides(path):
    """The slides of a saved message: text, sound and its length, background, pictures."""
    root = ET.parse(path).getroot()
    slides = []
    for slide in root.iter("SLIDE"):
        sound = slide.find("SOUND")
        objects = slide.find("DRAWOBJECTS")
        background = objects.find("BACKGROUND") if objects is not None else None
        slides.append({
            "text": slide.find("TEXT").get("text") if slide.find("TEXT") is not None else "",
            "sound": os.path.basename(sound.get("url", "")) if sound is not None else "",
            "duration": int(slide.get("dur", "0")),
            "background": os.path.basename(background.get("url", ""))
            if background is not None else "",
            "pictures": [os.path.basename(o.get("image", "")) for o in objects.iter("DRAWOBJECT")]
            if objects is not None else []})
    return slides


def check_built(slides):
    """The message on disk holds the three slides as they were made."""
    if len(slides) != len(SLIDES):
        raise SessionError("the saved message has %d slides, not %d: %r"
                           % (len(slides), len(SLIDES), slides))
    for number, (made, saved) in enumerate(zip(SLIDES, slides), 1):
        wanted = {"text": made["text"], "sound": made["sound"][0],
                  "duration": sound_length_ms(made["sound"][0]),
                  "background": made["background"][0], "pictures": [made["symbol"][0]]}
        if saved != wanted:
            raise SessionError("slide %d is saved as %r, not as made: %r" % (number, saved, wanted))


def file_stamp(path):
    """Tells one written version of a file from another: a save writes a new file."""
    try:
        info = os.stat(path)
    except FileNotFoundError:
        return None
    return info.st_ino, info.st_mtime_ns


def folder_bytes(folder):
    return {name: open(os.path.join(folder, name), "rb").read()
            for name in sorted(os.listdir(folder))}


def run(program, shots):
    display = Display()
    work = tempfile.mkdtemp(prefix="tessaly-session-")
    session = None
    try:
        app_home = os.path.join(work, "tessaly")
        os.makedirs(app_home)
        with open(os.path.join(app_home, "tessaly.xml"), "w", encoding="utf-8") as f:
            f.write('<?xml version="1.0" encoding="utf-8"?>\n<APPLICATIONS><APPLICATION '
                    'name="tessaly"><SECTIONS><SECTION name="preferences">'
                    '<KEY name="Language">en-us</KEY><KEY name="Initialized">1</KEY>'
                    '<KEY name="ShowSplash">0</KEY><KEY name="CommunicationType">0</KEY>'
                    '<KEY name="ShowPreview">1</KEY><KEY name="PreviewMode">0</KEY>'
                    '<KEY name="PreviewLoop">0</KEY><KEY name="SelectedTool">0</KEY>'
                    '</SECTION></SECTIONS></APPLICATION></APPLICATIONS>\n')
        session = Session(program, display.name, work, shots)
        folder = os.path.join(app_home, "Messages", MESSAGE_NAME)
        document = os.path.join(folder, "message.xml")

        session.start()
        session.build()
        popup, took = session.preview()
        total = sum(sound_length_ms(s["sound"][0]) for s in SLIDES) / 1000
        if took < total - 0.1:
            raise SessionError("the preview ended after %.1f s, before its %.1f s" % (took, total))
        session.save_as(popup, MESSAGE_NAME)
        wait_for(lambda: os.path.isfile(document), document)
        first = read_slides(document)
        check_built(first)
        first_files = folder_bytes(folder)
        session.close()

        session.start()
        session.open_message()
        for index in (2, 3, 1):  # each slide goes through the window and back
            session.click(strip_tile(index))
        session.shoot("reopened")
        saved_at = file_stamp(document)
        session.file_menu(FILE_SAVE)
        wait_for(lambda: file_stamp(document) not in (None, saved_at), "the message saved again")
        again = read_slides(document)
        if again != first:
            raise SessionError("the reopened message differs:\nfirst  %r\nagain  %r"
                               % (first, again))
        changed = [name for name, data in folder_bytes(folder).items()
                   if first_files.get(name) != data]
        if changed or set(first_files) != set(os.listdir(folder)):
            raise SessionError("saving the reopened message changed %r" % changed)
        session.close()
        print("the session built, played, saved and reopened %d slides (preview %.1f s)"
              % (len(first), took))
        return 0
    except SessionError:
        if session and session.process:
            print("the program shows: %r" % sorted(session.windows().values()))
            session.shoot("failure")
        raise
    finally:
        if session:
            session.kill()
        display.close()
        shutil.rmtree(work, ignore_errors=True)


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--tessaly", required=True, help="the program to drive")
    parser.add_argument("--screenshots", help="folder for a PNG of each step")
    args = parser.parse_args()
    needed = ["Xvfb", "xdotool"] + (["import"] if args.screenshots else [])
    missing = [tool for tool in needed if not shutil.which(tool)]
    if missing:
        print("FAIL: missing %s (scripts/deps.sh installs Xvfb and xdotool; import comes "
              "with imagemagick)" % ", ".join(missing))
        return 1
    if args.screenshots:
        os.makedirs(args.screenshots, exist_ok=True)
    try:
        return run(os.path.abspath(args.tessaly),
                   os.path.abspath(args.screenshots) if args.screenshots else None)
    except SessionError as error:
        print("FAIL:", error)
        return 1


if __name__ == "__main__":
    sys.exit(main())
