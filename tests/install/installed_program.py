#!/usr/bin/env python3
"""Installs a build into a temporary prefix and starts the installed program with a fresh home.

Usage: installed_program.py <cmake> <build folder>

Checks the installed layout (program, data, desktop entry, icons), then starts bin/tessaly with
an empty HOME (no TESSALY_HOME, XDG_DATA_HOME under that HOME) and TESSALY_SMOKE_REPORT: the
window must show translated captions, save a message into ~/.local/share/tessaly/Messages/ and
leave a complete preferences file there. A second start over a damaged preferences file must
keep it as .bak and come back complete.
"""
import os
import shutil
import struct
import subprocess
import sys
import tempfile
import xml.etree.ElementTree as ET

failures = []


def check(condition, what):
    if not condition:
        failures.append(what)
        print("FAIL:", what)


def png_size(path):
    with open(path, "rb") as f:
        head = f.read(24)
    if head[:8] != b"\x89PNG\r\n\x1a\n":
        return None
    return struct.unpack(">II", head[16:24])


def keys_of(path):
    """Every (section, key) of the tessaly application in a preferences file."""
    root = ET.parse(path).getroot()
    found = set()
    for app in root.iter("APPLICATION"):
        if app.get("name") != "tessaly":
            continue
        for section in app.iter("SECTION"):
            for key in section.iter("KEY"):
                found.add((section.get("name"), key.get("name")))
    return found


def start(prefix, home, report, name, app_home=None):
    env = {k: v for k, v in os.environ.items()
           if k not in ("TESSALY_HOME", "XDG_DATA_HOME", "TESSALY_EXE_NAME", "XDG_CONFIG_HOME")}
    env.update(HOME=home, QT_QPA_PLATFORM="offscreen", SDL_AUDIODRIVER="dummy",
               TESSALY_SMOKE_REPORT=report, TESSALY_SMOKE_NAME=name)
    if app_home:
        env["TESSALY_HOME"] = app_home
    run = subprocess.run([os.path.join(prefix, "bin", "tessaly")], env=env, cwd=home,
                         stdout=subprocess.PIPE, stderr=subprocess.STDOUT, timeout=120)
    check(run.returncode == 0, "the program ends with 0 (it gave %d)" % run.returncode)
    values = {}
    if os.path.exists(report):
        with open(report, encoding="utf-8") as f:
            for line in f:
                key, _, value = line.rstrip("\n").partition("=")
                values.setdefault(key, value)
    check(values, "the program wrote its report")
    return values


def check_window(values, name, user):
    menu = values.get("menu", "").split("|")
    check(len(menu) == 3 and all(c and not c.startswith("MNU_") for c in menu),
          "the menu bar shows translated captions: %r" % values.get("menu"))
    message = values.get("message", "")
    check(message and not message.startswith("STR_"),
          "the new message has a translated name: %r" % message)
    check(values.get("title") == "Tessaly", "the window title is Tessaly")
    check(values.get("boxes") == "0", "no box was shown: %r" % values)
    check(values.get("saved") == "1", "the message was saved: %r" % values)
    saved = os.path.join(user, "Messages", name, "message.xml")
    check(values.get("file") == saved, "the message went to %s, not %r" % (saved, values.get("file")))
    check(os.path.isfile(saved) and ET.parse(saved).getroot() is not None,
          "message.xml is there and well formed")


def main():
    cmake, build = sys.argv[1], sys.argv[2]
    work = tempfile.mkdtemp(prefix="tessaly-install-")
    try:
        prefix = os.path.join(work, "prefix")
        subprocess.run([cmake, "--install", build, "--prefix", prefix], check=True,
                       stdout=subprocess.DEVNULL)
        share = os.path.join(prefix, "share")
        defaults = os.path.join(share, "tessaly", "tessaly.xml")
        for path in ("bin/tessaly", "share/tessaly/tessaly.xml",
                     "share/tessaly/language/tessaly/en-us.xml",
                     "share/tessaly/skin/default/main.bmp", "share/applications/tessaly.desktop"):
            check(os.path.isfile(os.path.join(prefix, path)), "installed: " + path)
        for size in (48, 256):
            icon = os.path.join(share, "icons/hicolor/%dx%d/apps/tessaly.png" % (size, size))
            check(os.path.isfile(icon) and png_size(icon) == (size, size),
                  "a %dx%d PNG icon" % (size, size))
        validate = shutil.which("desktop-file-validate")
        if validate:
            desktop = os.path.join(share, "applications", "tessaly.desktop")
            run = subprocess.run([validate, desktop], stdout=subprocess.PIPE,
                                 stderr=subprocess.STDOUT, text=True)
            check(run.returncode == 0 and not run.stdout.strip(),
                  "desktop-file-validate accepts the entry: " + run.stdout)

        home = os.path.join(work, "home")
        os.mkdir(home)
        user = os.path.join(home, ".local", "share", "tessaly")
        preferences = os.path.join(user, "tessaly.xml")

        values = start(prefix, home, os.path.join(work, "first.txt"), "First")
        check_window(values, "First", user)
        wanted = keys_of(defaults)
        check(os.path.isfile(preferences) and wanted <= keys_of(preferences),
              "the user's preferences hold every default key")
        check(sorted(os.listdir(os.path.join(prefix, "bin"))) == ["tessaly"],
              "nothing of the user's is written beside the program")

        with open(preferences, "w") as f:
            f.write("<APPLICATIONS><APPLICATION name='tessaly'>")  # cut short
        values = start(prefix, home, os.path.join(work, "second.txt"), "Second")
        check_window(values, "Second", user)
        with open(preferences + ".bak") as f:
            check(f.read().endswith("name='tessaly'>"), "the damaged file is kept as .bak")
        check(wanted <= keys_of(preferences), "the damaged preferences come back complete")
        check(os.path.isfile(os.path.join(user, "Messages", "First", "message.xml")),
              "the first message is still there")

        # TESSALY_HOME names the folder of the user's files, empty at first.
        app_home = os.path.join(work, "app-home")
        os.mkdir(app_home)
        values = start(prefix, home, os.path.join(work, "third.txt"), "Third", app_home)
        check_window(values, "Third", app_home)
        check(wanted <= keys_of(os.path.join(app_home, "tessaly.xml")),
              "the preferences in TESSALY_HOME are complete")
        check(not os.path.exists(os.path.join(user, "Messages", "Third")),
              "nothing went to the XDG folder")
    finally:
        shutil.rmtree(work, ignore_errors=True)
    if failures:
        print("%d check(s) failed" % len(failures))
        return 1
    print("installed program: all checks passed")
    return 0


if __name__ == "__main__":
    sys.exit(main())
