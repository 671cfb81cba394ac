#!/usr/bin/env python3
"""Peak memory of loading a wall, sending everything to it and reading it back, by the number of its cabinets: device
after device ("send all"), and with devices at once, journal and report ("calibrate").

    bench/memory.py <qualityctl> [cabinets...]"""
import json
import os
import pathlib
import subprocess
import sys
import tempfile

EXAMPLES = pathlib.Path(__file__).resolve().parent.parent / "examples"
CABINETS_PER_DEVICE = 100


def wall(cabinets):
    devices = []
    for first in range(1, cabinets + 1, CABINETS_PER_DEVICE):
        last = min(first + CABINETS_PER_DEVICE, cabinets + 1)
        devices.append({"id": f"device{first}", "type": "G4", "cabinets": [{"cid": cid} for cid in range(first, last)]})
    return {"devices": devices}


def commands(folder):
    inputs = ["--table", str(EXAMPLES / "gray-table.csv"), "--target", "rec709",
              "--measured", str(EXAMPLES / "measured-gamut.json")]
    sent = ["--coefficients", "16384,0,0,0,16384,0,0,0,16384", "--correction", "on"]
    return {"send all": ["send", "all", *sent, *inputs],
            "calibrate": ["calibrate", "--out", str(pathlib.Path(folder) / "out"), "--force", *inputs]}


def peak_megabytes(qualityctl, arguments, cabinets, folder):
    document = pathlib.Path(folder) / "wall.json"
    document.write_text(json.dumps(wall(cabinets)))
    command = [qualityctl, "--quiet", *arguments, "--wall", str(document)]
    child = subprocess.Popen(command, stdout=subprocess.DEVNULL)
    _, status, usage = os.wait4(child.pid, 0)
    if status != 0:
        sys.exit(f"{cabinets} cabinets: exit code {os.waitstatus_to_exitcode(status)}")
    return usage.ru_maxrss / 1024.0


def main():
    qualityctl = sys.argv[1]
    counts = [int(text) for text in sys.argv[2:]] or [1000, 10_000, 50_000, 100_000]
    with tempfile.TemporaryDirectory() as folder:
        for name, arguments in commands(folder).items():
            print(f"{name}\ncabinets  peak MB  bytes per further cabinet")
            previous = None
            for count in counts:
                peak = peak_megabytes(qualityctl, arguments, count, folder)
                further = ""
                if previous is not None:
                    further = f"{(peak - previous[1]) * 1024 * 1024 / (count - previous[0]):.0f}"
                print(f"{count:8}  {peak:7.1f}  {further}", flush=True)
                previous = (count, peak)


if __name__ == "__main__":
    main()
