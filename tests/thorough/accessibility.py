"""What assistive technology sees of the card, and does with it: prints one line for each step."""

import sys
import time

import pyatspi
from gi.repository import GLib


def card():
    for application in pyatspi.Registry.getDesktop(0):
        if application and application.name == "virelune-widget" and application.childCount:
            return application[0]
    return None


def wait_for(question):
    for _ in range(100):
        if answer := question():
            return answer
        time.sleep(0.1)
    sys.exit("waited in vain")


def part(name):
    return next((child for child in window if child.name == name), None)


# The registry is there from now on: a program that registers while it starts may not be heard.
pyatspi.Registry.getDesktop(0).childCount
print("ready", flush=True)
window = wait_for(card)
wait_for(lambda: part("Song"))
for child in window:
    extents = child.queryComponent().getExtents(pyatspi.DESKTOP_COORDS)
    inside = extents.width > 0 and window.queryComponent().contains(
        extents.x + 1, extents.y + 1, pyatspi.DESKTOP_COORDS)
    print(child.getRoleName(), child.name, child.description, "inside" if inside else "outside",
          sep="|")
part("Play or pause").queryAction().doAction(0)
part("Position").queryValue().currentValue = 50
rating = part("Rating").queryValue()
rating.currentValue = 3.5
wait_for(lambda: rating.currentValue == 3.5)
part("Love").queryAction().doAction(0)
wait_for(lambda: part("Love").getState().contains(pyatspi.STATE_CHECKED))
part("Next track").queryAction().doAction(1)
wait_for(lambda: part("Next track").getState().contains(pyatspi.STATE_FOCUSED))
print("operated", flush=True)


def heard(event):
    print("heard", event.source.name, flush=True)
    if event.source.name == "Other":
        pyatspi.Registry.stop()


for kind in ("object:property-change:accessible-name", "object:property-change:accessible-value"):
    pyatspi.Registry.registerEventListener(heard, kind)
print("listening", flush=True)
GLib.timeout_add_seconds(15, pyatspi.Registry.stop)
pyatspi.Registry.start()
