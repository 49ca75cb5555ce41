"""The example files are exactly what make-device.py writes: neither one edited by hand, nor one left over."""
import filecmp
import pathlib
import subprocess
import sys
import tempfile

examples = pathlib.Path(sys.argv[1])
with tempfile.TemporaryDirectory() as folder:
    fresh = pathlib.Path(folder)
    subprocess.run([sys.executable, examples / "make-device.py", "--out", fresh], check=True)
    written = {path.relative_to(fresh) for path in fresh.rglob("*") if path.is_file()}
    kept = {path.relative_to(examples) for sub in ("device", "requests") for path in (examples / sub).rglob("*")}
    wrong = sorted(str(path) for path in written ^ kept)
    wrong += [str(path) for path in sorted(written & kept)
              if not filecmp.cmp(fresh / path, examples / path, shallow=False)]
print(f"{len(written)} files compared")
if wrong or len(written) < 30:
    sys.exit(f"not as make-device.py writes them: {', '.join(wrong)}")
