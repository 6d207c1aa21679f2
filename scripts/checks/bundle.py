"""The Info.plist of the macOS bundle as CMake finishes it, its entitlements and its icon are what the system needs.

On a Mac most of these faults show only when the application is started, signed or looked at in the Finder.
"""
import base64
import pathlib
import plistlib
import re
import struct
import subprocess
import sys
import tempfile

PACKAGING = pathlib.Path("packaging/macos").resolve()
# Configures the bundle alone: its target stands in for the program, which needs the platform's compiler.
PROJECT = """cmake_minimum_required(VERSION 3.25)
project(Ostrel VERSION {version} LANGUAGES NONE)
add_custom_target(ostrel)
add_subdirectory({packaging} bundle)
get_target_property(sources ostrel SOURCES)
get_target_property(plist ostrel MACOSX_BUNDLE_INFO_PLIST)
file(WRITE ${{CMAKE_BINARY_DIR}}/facts "${{plist}}\\n${{sources}}\\n")
"""
FEED = "https://updates.example/appcast.xml?channel=stable&arch=<any>"
PUBLIC_KEY = base64.b64encode(bytes(32)).decode()
# The type codes of an icon's pictures and their sizes in pixels.
ICON_SIZES = {b"icp4": 16, b"icp5": 32, b"ic07": 128, b"ic08": 256, b"ic09": 512,
              b"ic11": 32, b"ic12": 64, b"ic13": 256, b"ic14": 512, b"ic10": 1024}
failures = []


def expect(condition, message):
    if not condition:
        failures.append(message)


def version_of_project():
    return re.search(r"project\(Ostrel VERSION ([\d.]+)", pathlib.Path("CMakeLists.txt").read_text())[1]


def configured(version, *options):
    """The finished Info.plist and the names of the bundle's resources."""
    with tempfile.TemporaryDirectory() as folder:
        (pathlib.Path(folder) / "CMakeLists.txt").write_text(PROJECT.format(version=version, packaging=PACKAGING))
        build = pathlib.Path(folder) / "build"
        run = subprocess.run(["cmake", "-S", folder, "-B", build, *options], capture_output=True, text=True)
        if run.returncode != 0:
            sys.exit(f"The bundle cannot be configured.\n{run.stdout}{run.stderr}")
        plist, sources = (build / "facts").read_text().splitlines()
        return pathlib.Path(plist).read_bytes(), [pathlib.Path(source).name for source in sources.split(";")]


def parsed(name, content):
    expect(not re.search(rb"[@$]\{?\w+[@}]", content), f"{name}: a placeholder is left")
    try:
        return plistlib.loads(content)
    except Exception as error:  # the parser's own errors are of many kinds
        failures.append(f"{name}: not well-formed: {error}")
        return {}


def check_info(content, resources, version):
    info = parsed("Info.plist", content)
    if not info:
        return info
    for key, wanted in {
        "CFBundleInfoDictionaryVersion": "6.0", "CFBundlePackageType": "APPL", "CFBundleExecutable": "Ostrel",
        "CFBundleName": "Ostrel", "CFBundleShortVersionString": version, "LSMinimumSystemVersion": "13.0",
        "NSPrincipalClass": "NSApplication", "LSUIElement": True, "NSHighResolutionCapable": True,
    }.items():
        expect(info.get(key) == wanted, f"Info.plist: {key} is {info.get(key)!r}, not {wanted!r}")
    for key, pattern in {
        "CFBundleIdentifier": r"[A-Za-z0-9-]+(\.[A-Za-z0-9-]+)+", "CFBundleVersion": r"\d+(\.\d+){0,2}",
        "CFBundleDevelopmentRegion": r"[a-z]{2}", "LSApplicationCategoryType": r"public\.app-category\.[a-z-]+",
        "NSAccessibilityUsageDescription": r".{20,}", "NSHumanReadableCopyright": r".+", "CFBundleIconFile": r".+",
    }.items():
        value = info.get(key)
        expect(isinstance(value, str) and re.fullmatch(pattern, value), f"Info.plist: {key} is {value!r}")
    icon = f"{info.get('CFBundleIconFile')}.icns"
    expect(icon in resources and (PACKAGING / icon).is_file(), f"Info.plist: the icon {icon} is not in the bundle")
    return info


def check_entitlements():
    entitlements = parsed("entitlements", (PACKAGING / "Ostrel.entitlements").read_bytes())
    expect(entitlements.get("com.apple.security.app-sandbox") is False, "entitlements: the sandbox is not off")
    for key in entitlements:
        expect(not key.startswith("com.apple.security.cs."), f"entitlements: {key} weakens the hardened runtime")


def check_icon():
    content = (PACKAGING / "Ostrel.icns").read_bytes()
    kind, length = struct.unpack(">4sI", content[:8])
    expect(kind == b"icns" and length == len(content), "icon: wrong head")
    found, offset = {}, 8
    while offset + 8 <= len(content):
        kind, length = struct.unpack(">4sI", content[offset:offset + 8])
        picture = content[offset + 8:offset + length]
        is_png = picture[:8] == b"\x89PNG\r\n\x1a\n" and picture[-8:-4] == b"IEND"
        found[kind] = struct.unpack(">II", picture[16:24]) if is_png else None
        offset += max(length, 8)
    expect(offset == len(content), "icon: cut off")
    for kind, size in ICON_SIZES.items():
        expect(found.get(kind) == (size, size), f"icon: {kind.decode()} is {found.get(kind)}, not {size} pixels square")


version = version_of_project()
plain = check_info(*configured(version), version)
expect(not any(key.startswith("SU") for key in plain), "Info.plist: update keys without an update framework")
updating = check_info(*configured(version, f"-DOSTREL_UPDATE_FEED={FEED}", f"-DOSTREL_UPDATE_PUBLIC_KEY={PUBLIC_KEY}"), version)
for key, wanted in {"SUFeedURL": FEED, "SUPublicEDKey": PUBLIC_KEY, "SUEnableAutomaticChecks": True,
                    "SUScheduledCheckInterval": 86400}.items():
    expect(updating.get(key) == wanted, f"Info.plist with updates: {key} is {updating.get(key)!r}, not {wanted!r}")
check_entitlements()
check_icon()
print("\n".join(sorted(set(failures))) or "The macOS bundle is whole.")
sys.exit(bool(failures))
