#!/usr/bin/env bash
# Reads the writer's images back with Pillow and ImageMagick and checks size,
# orientation, colours and alpha pixel by pixel. A missing reader is a failure.
set -u
sample="$1"
dir=$(mktemp -d)
trap 'rm -rf "$dir"' EXIT

for tool in /usr/bin/python3 /usr/bin/convert /usr/bin/identify; do
  if [ ! -x "$tool" ]; then
    echo "FAIL: $tool is missing (install python3-pil and imagemagick)" >&2
    exit 1
  fi
done
"$sample" "$dir" || { echo "FAIL: tga_sample did not run" >&2; exit 1; }

/usr/bin/python3 - "$dir" <<'PY'
import subprocess, sys
try:
    from PIL import Image
except ImportError:
    print("FAIL: Pillow (python3-pil) is missing", file=sys.stderr)
    sys.exit(1)

d = sys.argv[1]
W, H = 200, 120

def expected(x, y):
    """The picture, y counted from the top: a red F on blue, a strip below."""
    if y >= 112:
        return (x, 4 * (y - 112), 50, 200)
    stem = 20 <= x < 40 and 10 <= y < 110
    top = 20 <= x < 120 and 10 <= y < 30
    middle = 20 <= x < 90 and 50 <= y < 65
    return (255, 0, 0, 255) if stem or top or middle else (0, 0, 255, 128)

failures = []

def compare(label, get, alpha, flipped=False):
    bad = 0
    for y in range(H):
        for x in range(W):
            want = expected(x, H - 1 - y if flipped else y)
            want = want if alpha else want[:3]
            got = tuple(get(x, y))
            if got != want:
                if bad < 5:
                    failures.append(f"{label}: pixel ({x},{y}) is {got}, expected {want}")
                bad += 1
    if bad:
        failures.append(f"{label}: {bad} pixels differ")

files = [("f1.tga", False, False, "TGA"), ("f11.tga", True, False, "TGA"),
         ("f12.tga", False, False, "TGA"), ("f13.tga", True, False, "TGA"),
         ("flipped12.tga", False, True, "TGA"), ("f.ppm", False, False, "PPM")]

for name, alpha, flipped, fmt in files:
    path = f"{d}/{name}"
    # Pillow
    try:
        im = Image.open(path)
        im.load()
    except Exception as e:
        failures.append(f"Pillow {name}: {e}")
    else:
        if im.size != (W, H):
            failures.append(f"Pillow {name}: size {im.size}")
        elif im.mode != ("RGBA" if alpha else "RGB"):
            failures.append(f"Pillow {name}: mode {im.mode}")
        else:
            px = im.load()
            compare(f"Pillow {name}", lambda x, y: px[x, y], alpha, flipped)
    # ImageMagick
    r = subprocess.run(["/usr/bin/identify", "-format", "%m %wx%h", path],
                       capture_output=True, text=True)
    if r.returncode != 0 or r.stdout.strip() != f"{fmt} {W}x{H}":
        failures.append(f"identify {name}: exit {r.returncode}, {r.stdout!r} {r.stderr!r}")
        continue
    chans = "rgba" if alpha else "rgb"
    n = len(chans)
    r = subprocess.run(["/usr/bin/convert", path, "-auto-orient", "-depth", "8",
                        f"{chans}:-"], capture_output=True)
    if r.returncode != 0 or len(r.stdout) != W * H * n:
        failures.append(f"convert {name}: exit {r.returncode}, {len(r.stdout)} bytes, "
                        f"{r.stderr.decode(errors='replace')!r}")
        continue
    data = r.stdout
    compare(f"ImageMagick {name}",
            lambda x, y: data[(y * W + x) * n:(y * W + x) * n + n], alpha, flipped)

for f in failures:
    print("FAIL:", f, file=sys.stderr)
sys.exit(1 if failures else 0)
PY
status=$?
[ $status -eq 0 ] && echo "TGA and PPM files read back correctly with Pillow and ImageMagick"
exit $status
