"""Draws packaging/icon.svg at every size of a macOS icon and packs them into packaging/macos/Ostrel.icns.

To be run by hand after the drawing changes; needs rsvg-convert (Debian: librsvg2-bin).
"""
import pathlib
import struct
import subprocess

FOLDER = pathlib.Path(__file__).parent
# The type codes of PNG pictures in an icon, with their sizes in pixels; the @2x ones stand for half as many points.
PICTURES = {
    b"icp4": 16, b"ic11": 32, b"icp5": 32, b"ic12": 64, b"ic07": 128, b"ic13": 256, b"ic08": 256, b"ic14": 512,
    b"ic09": 512, b"ic10": 1024,
}


def drawn(size):
    return subprocess.run(
        ["rsvg-convert", "--width", str(size), "--height", str(size), FOLDER.parent / "icon.svg"],
        check=True, capture_output=True).stdout


def chunk(kind, content):
    return kind + struct.pack(">I", len(content) + 8) + content


(FOLDER / "Ostrel.icns").write_bytes(chunk(b"icns", b"".join(chunk(kind, drawn(size)) for kind, size in PICTURES.items())))
