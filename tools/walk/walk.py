"""walk.py keyboard|assistive OUT PAKRUNE DISK: one person's hour; a numbered picture of each step."""
import subprocess
import sys
import time

from desktop import Assistive, Keyboard, Program

how, out, pakrune, disk = sys.argv[1:]
launcher = subprocess.Popen(["/usr/libexec/at-spi-bus-launcher", "--launch-immediately"])
time.sleep(0.5)
process = subprocess.Popen([pakrune, "-d", disk + "/kt500-app"])
pictures = 0
archive = "kt500-app.tgz"


def picture(name):
    global pictures
    pictures += 1
    time.sleep(0.6)
    subprocess.run(["import", "-window", "root", f"{out}/{pictures:02}-{name}.png"], check=True)


def walk(program, hand):
    program.window("Pakrune")
    picture("browse")
    hand.take("run.sh")
    picture("one-row")
    hand.all_rows()
    hand.press("Set Permissions")
    dialog = program.window("Set Permissions")
    picture("permissions")
    hand.press("Set Permissions", dialog)
    program.gone("Set Permissions")
    picture("permissions-set")
    hand.all_rows()
    hand.press("Create Tar File")
    dialog = program.window("Create Tar File")
    picture("pack")
    hand.press("Create Tar", dialog)
    program.gone("Create Tar File")
    picture("packed")
    hand.take(archive)
    hand.open_archive()
    program.find("Extract All", "push button")
    picture("inspect")
    hand.press("Extract All")
    hand.press("OK", program.window("Create folder?"))
    program.find("OK", "push button")
    picture("extracted")
    hand.press("OK")
    hand.take(archive)
    hand.menu("Download", "Network Download to Kt500..")
    dialog = program.window("Download to Kt500")
    for box, octet in enumerate("127.0.0.1".split("."), 1):
        hand.enter(f"Destination IP, box {box} of 4", octet)
    picture("send")
    hand.press("Send", dialog)
    program.window("Send Complete")
    picture("sent")
    hand.press("OK")
    program.gone("Send Complete")
    picture("end")


try:
    program = Program("pakrune")
    walk(program, {"keyboard": Keyboard, "assistive": Assistive}[how](program))
except Exception:
    picture("failed")
    raise
finally:
    process.terminate()
    process.wait()
    launcher.terminate()
