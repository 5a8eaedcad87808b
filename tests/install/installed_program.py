#!/usr/bin/env python3
"""Installs a build into a temporary prefix and starts the installed program with a fresh home
(no TESSALY_HOME, XDG_DATA_HOME under HOME) through TESSALY_SMOKE_REPORT: it must show translated
captions, save a message under ~/.local/share/tessaly/Messages/ and leave complete preferences
there; a damaged preferences file is kept as .bak and comes back complete on the next start.
Usage: installed_program.py <cmake> <build folder>"""
import os, shutil, struct, subprocess, sys, tempfile
import xml.etree.ElementTree as ET

failures = []


def check(condition, what):
    if not condition:
        failures.append(what)
        print("FAIL:", what)


def png_size(path):
    with open(path, "rb") as f:
        head = f.read(24)
    return struct.unpack(">II", head[16:24]) if head[:8] == b"\x89PNG\r\n\x1a\n" else None


def keys_of(path):
    """Every (section, key) of the tessaly application in a preferences file."""
    apps = ET.parse(path).getroot().iter("APPLICATION")
    return {(s.get("name"), k.get("name")) for a in apps if a.get("name") == "tessaly"
            for s in a.iter("SECTION") for k in s.iter("KEY")}


def start(prefix, home, report, name, app_home=None):
    """Runs the installed program once and checks what its report says."""
    env = {k: v for k, v in os.environ.items()
           if k not in ("TESSALY_HOME", "XDG_DATA_HOME", "TESSALY_EXE_NAME")}
    env.update(HOME=home, QT_QPA_PLATFORM="offscreen", SDL_AUDIODRIVER="dummy",
               TESSALY_SMOKE_REPORT=report, TESSALY_SMOKE_NAME=name)
    if app_home:
        env["TESSALY_HOME"] = app_home
    # A session bus of its own, as a desktop session gives, for the phone transport it starts.
    bus = ["dbus-run-session", "--"] if shutil.which("dbus-run-session") else []
    run = subprocess.run(bus + [os.path.join(prefix, "bin", "tessaly")], env=env, cwd=home,
                         stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL, timeout=120)
    check(run.returncode == 0, "the program ends with 0 (it gave %d)" % run.returncode)
    values = {}
    if os.path.exists(report):
        with open(report, encoding="utf-8") as f:
            values = dict(line.rstrip("\n").partition("=")[::2] for line in f)
    menu = values.get("menu", "").split("|")
    check(len(menu) == 3 and all(c and not c.startswith("MNU_") for c in menu),
          "the menu bar shows translated captions: %r" % values)
    message = values.get("message", "")
    check(message and not message.startswith("STR_"), "the new message has a translated name")
    check(values.get("title") == "Tessaly", "the window title is Tessaly")
    check(values.get("boxes") == "0" and values.get("saved") == "1", "saved, no box: %r" % values)
    saved = os.path.join(app_home or os.path.join(home, ".local/share/tessaly"), "Messages",
                         name, "message.xml")
    check(values.get("file") == saved and os.path.isfile(saved) and ET.parse(saved),
          "the message is saved as %s" % saved)


def main():
    cmake, build = sys.argv[1], sys.argv[2]
    work = tempfile.mkdtemp(prefix="tessaly-install-")
    try:
        prefix = os.path.join(work, "prefix")
        subprocess.run([cmake, "--install", build, "--prefix", prefix], check=True,
                       stdout=subprocess.DEVNULL)
        share = os.path.join(prefix, "share")
        for path in ("bin/tessaly", "bin/tessaly-publish", "share/tessaly/tessaly.xml", "share/tessaly/skin/default/main.bmp",
                     "share/tessaly/language/tessaly/en-us.xml", "share/applications/tessaly.desktop",
                     "libexec/tessaly/IrCommunication", "libexec/tessaly/ObexCommunication",
                     "libexec/tessaly/Q500Communication"):
            check(os.path.isfile(os.path.join(prefix, path)), "installed: " + path)
        for size in (48, 256):
            icon = os.path.join(share, "icons/hicolor/%dx%d/apps/tessaly.png" % (size, size))
            check(os.path.isfile(icon) and png_size(icon) == (size, size), "%d px icon" % size)
        validate = shutil.which("desktop-file-validate")
        if validate:
            run = subprocess.run([validate, os.path.join(share, "applications/tessaly.desktop")],
                                 stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True)
            check(run.returncode == 0 and not run.stdout.strip(), "valid entry: " + run.stdout)

        programs = sorted(os.listdir(os.path.join(prefix, "bin")))
        home = os.path.join(work, "home")
        os.mkdir(home)
        user = os.path.join(home, ".local/share/tessaly")
        preferences = os.path.join(user, "tessaly.xml")
        wanted = keys_of(os.path.join(share, "tessaly/tessaly.xml"))
        start(prefix, home, os.path.join(work, "first.txt"), "First")
        check(os.path.isfile(preferences) and wanted <= keys_of(preferences),
              "the user's preferences hold every default key")
        check(sorted(os.listdir(os.path.join(prefix, "bin"))) == programs,
              "nothing of the user's is written beside the program")

        with open(preferences, "w") as f:
            f.write("<APPLICATIONS><APPLICATION name='tessaly'>")  # cut short
        start(prefix, home, os.path.join(work, "second.txt"), "Second")
        with open(preferences + ".bak") as f:
            check(f.read().endswith("name='tessaly'>"), "the damaged file is kept as .bak")
        check(wanted <= keys_of(preferences), "the damaged preferences come back complete")
        check(os.path.isfile(os.path.join(user, "Messages/First/message.xml")),
              "the first message is still there")

        app_home = os.path.join(work, "app-home")  # TESSALY_HOME: an empty folder
        os.mkdir(app_home)
        start(prefix, home, os.path.join(work, "third.txt"), "Third", app_home)
        check(wanted <= keys_of(os.path.join(app_home, "tessaly.xml")),
              "the preferences in TESSALY_HOME are complete")
        check(not os.path.exists(os.path.join(user, "Messages/Third")), "nothing went to XDG")
    finally:
        shutil.rmtree(work, ignore_errors=True)
    print("%d check(s) failed" % len(failures) if failures else "all checks passed")
    return 1 if failures else 0


if __name__ == "__main__":
    sys.exit(main())
