"""Makes all product data again and compares it with what is committed; then proves the level plan.

Tables have to agree to 1e-6 of their range, audio to -100 dB. Needs Debian's python3-numpy and python3-scipy. Ends with
status 1 when anything differs, after having run every check.
"""

import pathlib
import subprocess
import sys

FOLDER = pathlib.Path(__file__).resolve().parent
CHECKS = (
    ("oversampling_firs.py", "--check"),
    ("valve_curves.py", "--check"),
    ("spring_tank_curves.py", "--check"),
    ("spring_tank.py", "--check"),
    ("cabinets.py", "--check"),
    ("guitars.py", "--check"),
    ("panel_frames.py", "--check"),
    ("client_frames.py", "--check"),
    ("level_plan.py",),
)


def main():
    failed = []
    for name, *options in CHECKS:
        print(f"== {name}", flush=True)
        if subprocess.run([sys.executable, FOLDER / name, *options]).returncode != 0:
            failed.append(name)
    print("product data: " + (f"{', '.join(failed)} failed" if failed else "all checks passed"))
    sys.exit(1 if failed else 0)


if __name__ == "__main__":
    main()
