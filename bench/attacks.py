"""How long the card's main thread stands still under what players can do to it; see bench/run.

attacks.py PROGRAM: a table of the longest turns, and of the memory before and after each attack.
"""

import os
import socket
import subprocess
import sys
import tempfile
import threading
import time

import dbus
import dbus.lowlevel
import dbus.service
from dbus.mainloop.glib import DBusGMainLoop, threads_init
from gi.repository import GLib

NAME = "org.mpris.MediaPlayer2.hostile"
PATH = "/org/mpris/MediaPlayer2"
PLAYER = "org.mpris.MediaPlayer2.Player"
PROPERTIES = "org.freedesktop.DBus.Properties"
LIMIT = 50  # milliseconds
OTHER_LIMITS = {"a player that never answers": 250}
SIGNALS = 100_000
COVER = os.path.join(os.path.dirname(os.path.abspath(__file__)), "../resources/covers/waves.png")


class Player(dbus.service.Object):
    """Tells what it is told to on its standard input: a line of Python for each attack."""

    def __init__(self):
        self.track = {"xesam:title": "Song", "xesam:album": "Album"}
        self.is_mute = False
        self.answers = 0
        super().__init__(dbus.service.BusName(NAME, dbus.SessionBus()), PATH)
        GLib.io_add_watch(sys.stdin, GLib.IO_IN | GLib.IO_HUP, self.obey)

    def obey(self, *_):
        line = sys.stdin.readline()
        if not line:
            sys.exit()
        exec(line, {"player": self, "threading": threading})  # from this very file
        if "Thread" not in line:
            print("done", flush=True)
        return True

    def values(self):
        self.answers += 1
        metadata = {"mpris:trackid": dbus.ObjectPath("/track/1"),
                    "mpris:length": dbus.Int64(180_000_000)} | self.track
        return dbus.Dictionary({"PlaybackStatus": "Playing", "Position": dbus.Int64(0),
                                "Volume": (self.answers % 100) / 100,
                                "Metadata": dbus.Dictionary(metadata, "sv")}, "sv")

    def tell(self, **track):
        self.track = {name.replace("_", ":"): value for name, value in track.items()}
        self.PropertiesChanged(PLAYER, self.values(), dbus.Array([], "s"))

    def flood(self):
        signal = dbus.lowlevel.SignalMessage(PATH, PROPERTIES, "PropertiesChanged")
        signal.append(PLAYER, self.values(), dbus.Array([], "s"), signature="sa{sv}as")
        for sent in range(SIGNALS):
            self.connection.send_message(signal.copy())
            if sent % 100 == 0:
                self.connection.flush()  # or the bus throws it out
        print("done", flush=True)

    @dbus.service.signal(PROPERTIES, "sa{sv}as")
    def PropertiesChanged(self, interface, changed, invalidated):
        pass

    @dbus.service.method(PROPERTIES, "s", "a{sv}", async_callbacks=("answer", "refuse"))
    def GetAll(self, interface, answer, refuse):
        if not self.is_mute:
            answer(self.values() if interface == PLAYER else {"Identity": "Hostile"})

    @dbus.service.method(PROPERTIES, "ss", "v", async_callbacks=("answer", "refuse"))
    def Get(self, interface, name, answer, refuse):
        if not self.is_mute:
            answer(self.values()[name])


class Card:
    """The program with its trace, and what it says of itself."""

    def __init__(self, program):
        self.process = subprocess.Popen(
            [program, "--scale=1"], stderr=subprocess.PIPE, text=True,
            env=os.environ | {"VIRELUNE_TRACE": "1"})
        self.turns = []
        threading.Thread(target=self.listen, daemon=True).start()
        time.sleep(4)

    def listen(self):
        for line in self.process.stderr:
            words = line.split()
            if words[:2] == ["busy", "for"]:
                self.turns.append(int(words[2]))

    def memory(self):
        """Its own alone, in MiB."""
        with open(f"/proc/{self.process.pid}/smaps_rollup") as pages:
            return next(int(line.split()[1]) for line in pages
                        if line.startswith("Anonymous:")) / 1024

    def processor(self):
        """Seconds so far."""
        with open(f"/proc/{self.process.pid}/stat") as stat:
            fields = stat.read().rsplit(")", 1)[1].split()
        return (int(fields[11]) + int(fields[12])) / os.sysconf("SC_CLK_TCK")


def silent_server():
    """The port of one that takes every connection and never says a word."""
    server = socket.create_server(("127.0.0.1", 0))
    kept = []

    def accept():
        while True:
            kept.append(server.accept())

    threading.Thread(target=accept, daemon=True).start()
    return server.getsockname()[1]


def attacks(folder):
    """The name of each, what the player does, and for how many seconds it is watched."""
    fifo = os.path.join(folder, "fifo")
    os.mkfifo(fifo)
    large = os.path.join(folder, "large.jpg")
    with open(large, "wb") as file:
        file.write(b"\xff\xd8\xff\xe0")
        file.truncate(100 << 20)
    progressive = os.path.join(folder, "progressive.jpg")
    from PIL import Image
    Image.effect_noise((4472, 4472), 80).convert("RGB").save(progressive, progressive=True)
    port = silent_server()
    return [
        ("one track after another", "player.tell(xesam_title='Next', xesam_album='Another')", 3),
        ("a player that never answers",
         "player.is_mute = True; player.tell(xesam_title='Mute')", 8),
        ("a title of 1 MB", "player.is_mute = False; player.tell(xesam_title='long ' * 200_000)", 4),
        (f"{SIGNALS:,} signals of changes", "player.track = {}; threading.Thread(target=player.flood).start()", 5),
        ("a cover that is a FIFO", f"player.tell(xesam_album='1', mpris_artUrl='file://{fifo}')", 5),
        ("a cover on a server that is silent",
         f"player.tell(xesam_album='2', mpris_artUrl='http://127.0.0.1:{port}/c.jpg')", 8),
        ("a cover of 100 MB", f"player.tell(xesam_album='3', mpris_artUrl='file://{large}')", 6),
        ("a progressive JPEG of 4472 x 4472",
         f"player.tell(xesam_album='4', mpris_artUrl='file://{progressive}')", 8),
        ("another cover after that",
         f"player.tell(xesam_album='5', mpris_artUrl='file://{COVER}')", 5),
    ]


def measure(program):
    with tempfile.TemporaryDirectory() as folder:
        os.environ.update({name: folder for name in (
            "HOME", "XDG_CONFIG_HOME", "XDG_DATA_HOME", "XDG_STATE_HOME", "XDG_RUNTIME_DIR")})
        player = subprocess.Popen([sys.executable, __file__, "--player"], stdin=subprocess.PIPE,
                                  stdout=subprocess.PIPE, text=True)
        time.sleep(1)
        card = Card(program)
        print("attack: longest turn of the main thread (at most), all turns over 10 ms; processor; "
              "memory before and after")
        for name, order, seconds in attacks(folder):
            card.turns.clear()
            before, used = card.memory(), card.processor()
            print(order, file=player.stdin, flush=True)
            player.stdout.readline()
            time.sleep(seconds)
            turns = list(card.turns)
            print(f"{name}: {max(turns) if turns else 'under 10'} ms ({OTHER_LIMITS.get(name, LIMIT)}), "
                  f"{len(turns)} turns; {card.processor() - used:.2f} s; "
                  f"{before:.1f} to {card.memory():.1f} MiB", flush=True)
        card.process.kill()
        player.kill()


if __name__ == "__main__":
    if sys.argv[1] == "--player":
        threads_init()
        DBusGMainLoop(set_as_default=True)
        Player()
        GLib.MainLoop().run()
    else:
        measure(sys.argv[1])
