#!/usr/bin/env python3
"""usage: check_output.py DOCUMENT PROGRAM ARGUMENTS... : what the program prints must stand in the document, whole."""

import pathlib
import subprocess
import sys

run = subprocess.run(sys.argv[2:], capture_output=True, text=True)
print(run.stdout + run.stderr, end="")
shown = "```\n" + run.stdout + "```\n"
sys.exit(run.returncode or run.stderr != "" or shown not in pathlib.Path(sys.argv[1]).read_text())
