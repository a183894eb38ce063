"""Operates the card at random; see scripts/monkey."""

import datetime
import json
import os
import random
import subprocess
import sys
import tempfile
import threading
import time

import dbus
import dbus.service
from dbus.mainloop.glib import DBusGMainLoop
from gi.repository import GLib

TRACKS = 50
SCREEN = (1000, 700)
LENGTH = 180_000_000  # microseconds
FREEZE = 0.3  # seconds without an answer of the card's main thread
CARD = "org.virelune.Virelune.Widget"
CARD_PATH = "/org/virelune/Virelune/Widget"
PLAYER = "org.mpris.MediaPlayer2.monkey"
PLAYER_PATH = "/org/mpris/MediaPlayer2"
PLAYER_INTERFACE = "org.mpris.MediaPlayer2.Player"
PROPERTIES = "org.freedesktop.DBus.Properties"


class Player(dbus.service.Object):
    """A music player with a list of tracks, which goes to the next one by itself when told so."""

    def __init__(self, interval):
        self.track = random.randrange(TRACKS)
        self.state = "Playing"
        self.position = 0
        self.volume = 0.5
        bus = dbus.SessionBus()
        super().__init__(dbus.service.BusName(PLAYER, bus), PLAYER_PATH)
        if interval:
            GLib.timeout_add(int(interval * 1000), self.advance)

    def advance(self):
        self.go(1)
        return True

    def values(self):
        metadata = {
            "mpris:trackid": dbus.ObjectPath(f"/track/{self.track}"),
            "mpris:length": dbus.Int64(LENGTH),
            "xesam:title": f"Song {self.track}",
            "xesam:artist": dbus.Array([f"Artist {self.track % 7}"], "s"),
            "xesam:album": f"Album {self.track % 11}",
            "xesam:url": f"file:///music/{self.track}.flac",
        }
        values = {name: True for name in ("CanPlay", "CanPause", "CanSeek", "CanGoNext",
                                          "CanGoPrevious", "CanControl")}
        return dbus.Dictionary(values | {
            "PlaybackStatus": self.state,
            "Metadata": dbus.Dictionary(metadata, "sv"),
            "Position": dbus.Int64(self.position),
            "Volume": self.volume,
        }, "sv")

    def tell(self):
        values = self.values()
        del values["Position"]
        self.PropertiesChanged(PLAYER_INTERFACE, values, dbus.Array([], "s"))

    def go(self, way):
        self.track = (self.track + way) % TRACKS
        self.position = 0
        self.tell()

    @dbus.service.signal(PROPERTIES, "sa{sv}as")
    def PropertiesChanged(self, interface, changed, invalidated):
        pass

    @dbus.service.method(PROPERTIES, "s", "a{sv}")
    def GetAll(self, interface):
        return self.values() if interface == PLAYER_INTERFACE else {"Identity": "Monkey"}

    @dbus.service.method(PROPERTIES, "ss", "v")
    def Get(self, interface, name):
        return self.GetAll(interface)[name]

    @dbus.service.method(PROPERTIES, "ssv")
    def Set(self, interface, name, value):
        self.volume = float(value)
        self.tell()

    @dbus.service.method(PLAYER_INTERFACE)
    def Next(self):
        self.go(1)

    @dbus.service.method(PLAYER_INTERFACE)
    def Previous(self):
        self.go(-1)

    @dbus.service.method(PLAYER_INTERFACE)
    def PlayPause(self):
        self.state = "Paused" if self.state == "Playing" else "Playing"
        self.tell()

    @dbus.service.method(PLAYER_INTERFACE, "ox")
    def SetPosition(self, track, position):
        self.position = position


class Found(Exception):
    """What the monkey was looking for."""


class Desktop:
    """A display and a home of their own, where a stand-in opens what the card wants opened."""

    def __init__(self, folder):
        self.folder = folder
        applications = os.path.join(folder, "applications")
        os.mkdir(applications)
        for name, types in (("browser", "x-scheme-handler/https;x-scheme-handler/http;"
                             "x-scheme-handler/mailto"), ("player", "audio/mpeg")):
            with open(os.path.join(applications, name + ".desktop"), "w") as entry:
                entry.write(f"[Desktop Entry]\nType=Application\nName={name}\nExec=true %u\n"
                            f"Categories=AudioVideo;Player;\nMimeType={types};\n")
        read, write = os.pipe()
        self.server = subprocess.Popen(
            ["Xvfb", "-displayfd", str(write), "-screen", "0", f"{SCREEN[0]}x{SCREEN[1]}x24", "-nolisten", "tcp"],
            pass_fds=[write], stderr=subprocess.DEVNULL)
        os.close(write)
        display = ":" + os.read(read, 10).decode().strip()
        os.environ.update(
            DISPLAY=display, HOME=folder, XDG_CONFIG_HOME=folder, XDG_DATA_HOME=folder,
            XDG_DATA_DIRS=folder, XDG_RUNTIME_DIR=folder, QT_QPA_PLATFORM="xcb",
            QT_LINUX_ACCESSIBILITY_ALWAYS_ON="1",
            # Each stack that it keeps for an allocation stays for good, and looks like growth.
            ASAN_OPTIONS="detect_leaks=0:quarantine_size_mb=2:malloc_context_size=1")
        self.accessibility = subprocess.Popen(
            ["/usr/libexec/at-spi-bus-launcher", "--launch-immediately"],
            stderr=subprocess.DEVNULL)

    def xdotool(self, *command):
        done = subprocess.run(["xdotool", *map(str, command)], capture_output=True, text=True)
        return done.stdout

    def card(self):
        """The card's place: x, y, width, height; none while it is not shown."""
        window = self.xdotool("search", "--onlyvisible", "--name", "^Virelune$").split()
        if not window:
            return None
        shape = dict(line.split("=") for line in
                     self.xdotool("getwindowgeometry", "--shell", window[0]).split())
        x, y, width, height = (int(shape.get(name, 0)) for name in ("X", "Y", "WIDTH", "HEIGHT"))
        # It is dragged everywhere; what lies beside the screen cannot be hit any more.
        if not (0 <= x <= SCREEN[0] - width and 0 <= y <= SCREEN[1] - height):
            self.xdotool("windowmove", "--sync", window[0], 100, 100)
            x, y = 100, 100
        return (x, y, width, height) if width > 0 else None


class Watch(threading.Thread):
    """Asks the card's main thread and the player's in turn, and notes how long each takes."""

    def __init__(self):
        super().__init__(daemon=True)
        self.longest = 0
        self.start()

    @staticmethod
    def ask(bus, service, path, interface, name):
        begin = time.monotonic()
        try:
            bus.call_blocking(service, path, PROPERTIES, "Get", "ss", (interface, name), timeout=10)
        except dbus.DBusException:
            return 0  # not there
        return time.monotonic() - begin

    def run(self):
        bus = dbus.bus.BusConnection(os.environ["DBUS_SESSION_BUS_ADDRESS"])
        while True:
            # What the machine itself takes shows at the player, which does nothing.
            usual = self.ask(bus, PLAYER, PLAYER_PATH, PLAYER_INTERFACE, "Volume")
            taken = self.ask(bus, CARD, CARD_PATH, CARD + "1", "State")
            self.longest = max(self.longest, taken - usual)
            time.sleep(0.02)


class Monkey:
    KEYS = ["space", "n", "p", "l", "m", "0", "1", "2", "3", "4", "5", "plus", "minus", "Left",
            "Right", "Up", "Down", "Tab", "shift+Tab", "Return", "Escape", "Home", "End", "F1",
            "alt+3", "alt+l", "Prior", "Next"]

    def __init__(self, program, desktop, soaks):
        self.program = program
        self.desktop = desktop
        self.soaks = soaks
        self.ratings = {}  # by title, as last seen, and when
        self.memory = []  # of the card that runs: time, KiB
        self.done = 0
        self.starts = 0
        self.player = None
        self.ear = None
        self.start_player()
        self.errors = open(os.path.join(desktop.folder, "errors"), "w+")
        self.start_card()
        self.bus = dbus.SessionBus()

    def start_player(self):
        self.player = subprocess.Popen([sys.executable, __file__, "--player",
                                        "1" if self.soaks else "0"])

    def listen(self):
        """Has assistive technology do something, unless it is still at the last thing."""
        if self.ear is None or self.ear.poll() is not None:
            self.ear = subprocess.Popen([sys.executable, __file__, "--ear"],
                                        stderr=subprocess.DEVNULL)

    def start_card(self):
        # The store and the station are not to hear of it.
        nowhere = ["--store-host", "127.0.0.1:1", "--stream-host", "127.0.0.1:1"]
        self.card = subprocess.Popen([self.program, *nowhere], stderr=self.errors)
        self.begin()
        time.sleep(3)

    def begin(self):
        self.memory.clear()
        self.starts += 1
        self.image = self.mapped()

    def mapped(self):
        """Where the program lies in memory; another place once it has begun again by itself."""
        with open(f"/proc/{self.card.pid}/maps") as maps:
            return maps.readline()

    def look(self):
        """Ends when the card has ended badly; starts it again when it was closed."""
        status = self.card.poll()
        self.errors.seek(0)
        report = self.errors.read()
        if "Sanitizer" in report or "runtime error" in report:
            raise Found("a sanitizer reports:\n" + report[:4000])
        if status:
            raise Found(f"the card ended with {status}:\n{report[-2000:]}")
        if status == 0:
            self.start_card()
        elif self.mapped() != self.image:
            self.begin()  # at another size
        try:
            with open(f"/proc/{self.card.pid}/smaps_rollup") as pages:
                # Its own alone: what it shares with others counts for less while those run.
                size = next(int(line.split()[1]) for line in pages if line.startswith("Anonymous:"))
            files = len(os.listdir(f"/proc/{self.card.pid}/fd"))
        except ProcessLookupError:
            return  # it has just ended, and the next look asks how
        self.memory.append((time.monotonic(), size, files))

    def remember(self):
        now = int(time.time())
        try:
            status = self.bus.call_blocking(CARD, CARD_PATH, CARD + "1", "Status", "", (),
                                            timeout=10)
        except dbus.DBusException:
            return
        if status.get("player") == "monkey" and status.get("ratedBy") == "user":
            self.ratings[str(status["title"])] = float(status["rating"]), now

    def point(self, place):
        x, y, width, height = place
        dx, dy = random.randrange(width), random.randrange(height)
        # A card that is closed all the time does not grow old.
        return (x, y) if dx > width - 30 and dy < 24 and self.done % 50 else (x + dx, y + dy)

    def act(self):
        place = self.desktop.card()
        chance = random.random()
        if chance < 0.02:
            self.player.kill()
            self.player.wait()
            if random.random() < 0.5:
                time.sleep(random.random() * 2)
            self.start_player()
        elif chance < 0.1:
            verb = random.choice([["rate", str(random.randrange(11) / 2)], ["love", "toggle"],
                                  ["next"], ["seek", "50%"], ["volume", "+5"]])
            subprocess.run([self.program, *verb], stderr=subprocess.DEVNULL)
        elif chance < 0.15:
            self.listen()
        elif place is None:
            self.desktop.xdotool("key", "Escape")
        elif chance < 0.45:
            self.desktop.xdotool("mousemove", *self.point(place), "click",
                                 random.choice([1, 1, 1, 1, 2]))
        elif chance < 0.6:
            self.desktop.xdotool("mousemove", *self.point(place), "mousedown", 1,
                                 "mousemove", *self.point(place), "mousemove", *self.point(place),
                                 "mouseup", 1)
        elif chance < 0.7:
            self.desktop.xdotool("mousemove", *self.point(place), "click",
                                 "--repeat", random.randrange(1, 6), random.choice([4, 5]))
        elif chance < 0.75:
            self.desktop.xdotool("mousemove", *self.point(place), "click", 3)
            for _ in range(random.randrange(6)):
                self.desktop.xdotool("key", random.choice(["Down", "Right", "Left", "Escape",
                                                           "Return"]))
            self.desktop.xdotool("key", "Escape", "Escape")
        else:
            self.desktop.xdotool("key", random.choice(self.KEYS))
        self.done += 1

    def check_store(self):
        listed = subprocess.run([self.program, "list", "--format", "json"], capture_output=True,
                                text=True).stdout
        kept = {entry["title"]: entry
                for entry in map(json.loads, listed.splitlines()) if entry["kind"] == "track"}

        def is_kept(title, rating, seen):
            entry = kept.get(title, {})
            when = datetime.datetime.fromisoformat(entry.get("ratingChanged", "1970-01-01T00:00:00Z"))
            # It may have been rated again between the last look and the next track.
            return entry.get("rating", 0) / 20 == rating or when.timestamp() >= seen
        lost = {title: (rating, seen, kept.get(title))
                for title, (rating, seen) in self.ratings.items()
                if not is_kept(title, rating, seen)}
        if lost:
            raise Found(f"ratings that were made, and what the store has of them: {lost}")

    def check_memory(self):
        """The last half of a run of ten minutes is as large at its end as at its beginning."""
        if not self.memory or self.memory[-1][0] - self.memory[0][0] < 600:
            return
        half = self.memory[len(self.memory) // 2:]
        part = max(len(half) // 4, 1)
        for index, name in ((1, "KiB"), (2, "descriptors")):
            before = min(sample[index] for sample in half[:part])
            after = min(sample[index] for sample in half[-part:])
            if after > before * 1.01:
                raise Found(f"it grows: from {before} to {after} {name}")

    def run(self, minutes):
        watch = Watch()
        end = time.monotonic() + 60 * minutes
        looked = 0
        while time.monotonic() < end:
            if self.soaks:
                time.sleep(5)
            else:
                self.act()
                self.remember()
            if self.soaks or time.monotonic() - looked > 2:
                looked = time.monotonic()
                self.look()
            if watch.longest > FREEZE:
                raise Found(f"no answer for {watch.longest:.2f} s after {self.done} acts")
        time.sleep(1)
        self.look()
        self.remember()
        if not self.soaks:
            self.check_store()
        self.check_memory()
        first, middle, last = (self.memory[index] for index in (0, len(self.memory) // 2, -1))
        print(f"{self.done} acts, {self.starts} starts, {len(self.ratings)} tracks rated; "
              f"longest without an answer {watch.longest * 1000:.0f} ms; memory of the last start "
              f"{first[1]}, {middle[1]}, {last[1]} KiB, descriptors {first[2]}, {middle[2]}, "
              f"{last[2]}")


def hear():
    """Does something with a part of the card, as a screen reader would."""
    import pyatspi  # connects at once

    for application in pyatspi.Registry.getDesktop(0):
        if not application or application.name != "virelune-widget" or not application.childCount:
            continue
        parts = [part for part in application[0] if part and part.name != "Close"]
        for part in random.sample(parts, min(3, len(parts))):
            interfaces = pyatspi.listInterfaces(part)
            if "Value" in interfaces:
                value = part.queryValue()
                value.currentValue = random.uniform(value.minimumValue - 1, value.maximumValue + 1)
            elif "Action" in interfaces:
                action = part.queryAction()
                action.doAction(random.randrange(action.nActions))


def play(interval):
    DBusGMainLoop(set_as_default=True)
    Player(interval)
    GLib.MainLoop().run()


def main():
    if sys.argv[1] == "--player":
        return play(float(sys.argv[2]))
    if sys.argv[1] == "--ear":
        return hear()
    program = os.path.abspath(sys.argv[1])
    soaks = sys.argv[2] == "--soak"
    numbers = [int(argument) for argument in sys.argv[3 if soaks else 2:]]
    seed = numbers[1] if len(numbers) > 1 else random.randrange(1_000_000)
    random.seed(seed)
    with tempfile.TemporaryDirectory() as folder:
        desktop = Desktop(folder)
        monkey = Monkey(program, desktop, soaks)
        try:
            monkey.run(numbers[0])
        except Found as found:
            print(f"scripts/monkey: seed {seed}: {found}", file=sys.stderr)
            return 1
        finally:
            for process in (monkey.card, monkey.player, desktop.accessibility, desktop.server):
                process.kill()
                process.wait()
    return 0


if __name__ == "__main__":
    sys.exit(main())
