"""The macOS bundle as the build puts it together: its Info.plist, entitlements, icon, embedded framework and signing.

On a Mac most of these faults show only when the application is started, signed or looked at in the Finder. Here the whole
project is configured for a Mac and built by a compiler that leaves empty files; codesign is a stand-in that takes notes.
"""
import base64
import os
import pathlib
import plistlib
import re
import struct
import subprocess
import sys
import tempfile

PACKAGING = pathlib.Path("packaging/macos").resolve()
TOOLCHAIN = """set(CMAKE_SYSTEM_NAME Darwin)
set(CMAKE_SYSTEM_VERSION 22)
foreach(language CXX OBJCXX)
  set(CMAKE_${language}_COMPILER /bin/false)
  set(CMAKE_${language}_COMPILER_ID_RUN ON)
  set(CMAKE_${language}_COMPILER_ID AppleClang)
  set(CMAKE_${language}_COMPILER_VERSION 15.0)
  set(CMAKE_${language}_STANDARD_COMPUTED_DEFAULT 17)
  set(CMAKE_${language}_COMPILER_FORCED ON)
  set(CMAKE_${language}_COMPILE_OBJECT "${CMAKE_COMMAND} -E touch <OBJECT>")
  set(CMAKE_${language}_CREATE_STATIC_LIBRARY "${CMAKE_COMMAND} -E touch <TARGET>")
  set(CMAKE_${language}_LINK_EXECUTABLE "${CMAKE_COMMAND} -E touch <TARGET>")
endforeach()
set(CMAKE_AR /bin/false)
set(CMAKE_INSTALL_NAME_TOOL /bin/true)
"""
# Notes what it signs and as whom, and the files in it at that moment, which is what it would seal.
CODESIGN = """#!/bin/sh
for last; do :; done
{ echo "$last"; echo "$*"; (cd "$last" && find . ! -type d | sort | tr '\\n' ' '); echo; } >>"$SIGNED"
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


def files_in(bundle):
    return sorted(str(path.relative_to(bundle)) for path in bundle.rglob("*") if path.is_symlink() or path.is_file())


class Build:
    """The bundle built in a folder of its own; may be built again there with other options."""

    def __init__(self, folder):
        self.folder = pathlib.Path(folder)
        self.bundle = self.folder / "build/Ostrel.app"
        (self.folder / "toolchain.cmake").write_text(TOOLCHAIN)
        (self.folder / "codesign").write_text(CODESIGN)
        (self.folder / "codesign").chmod(0o755)

    def make(self, *options, identity=None):
        """Returns what was signed, in order: its path in the bundle, codesign's arguments, the files in it."""
        notes = self.folder / "signed"
        notes.write_text("")
        environment = {name: value for name, value in os.environ.items() if name != "OSTREL_SIGNING_IDENTITY"}
        environment.update(PATH=f"{self.folder}:{environment['PATH']}", SIGNED=str(notes))
        if identity:
            environment["OSTREL_SIGNING_IDENTITY"] = identity
        for command in (["cmake", "-G", "Ninja", "-S", ".", "-B", self.folder / "build",
                         f"-DCMAKE_TOOLCHAIN_FILE={self.folder}/toolchain.cmake", *options],
                        ["cmake", "--build", self.folder / "build", "--target", "ostrel"]):
            run = subprocess.run(command, capture_output=True, text=True, env=environment)
            if run.returncode != 0:
                sys.exit(f"The bundle cannot be built.\n{run.stdout}{run.stderr}")
        lines = notes.read_text().splitlines()
        return [(os.path.relpath(lines[i], self.bundle), lines[i + 1].split(), lines[i + 2].split())
                for i in range(0, len(lines), 3)]

    def info(self):
        return (self.bundle / "Contents/Info.plist").read_bytes()


def check_signing(name, build, signed, identity, wanted):
    expect([each[0] for each in signed] == wanted, f"{name}: signed {[each[0] for each in signed]}, not {wanted}")
    for path, arguments, _ in signed:
        expect(f"--force --sign {identity}" in " ".join(arguments), f"{name}: {path} is signed with {arguments}")
    if signed:
        path, arguments, sealed = signed[-1]
        expect("--entitlements" in arguments, f"{name}: the application is signed without its entitlements")
        present = [f"./{file}" for file in files_in(build.bundle)]
        expect(sorted(sealed) == present, f"{name}: sealed {sorted(sealed)}, but there is {present}")


def stub_framework(folder):
    """A framework as they are: one version, and links to it."""
    framework = pathlib.Path(folder) / "Sparkle.framework"
    version = framework / "Versions/A"
    for helper in ("XPCServices/Installer.xpc", "Updater.app"):
        (version / helper).mkdir(parents=True)
        (version / helper / "program").touch()
    (version / "Sparkle").touch()
    (framework / "Versions/Current").symlink_to("A")
    (framework / "Sparkle").symlink_to("Versions/Current/Sparkle")
    return framework


def parsed(name, content):
    expect(not re.search(rb"[@$]\{?\w+[@}]", content), f"{name}: a placeholder is left")
    try:
        return plistlib.loads(content)
    except Exception as error:  # the parser's own errors are of many kinds
        failures.append(f"{name}: not well-formed: {error}")
        return {}


def check_info(build, version):
    info = parsed("Info.plist", build.info())
    if not info:
        return info
    for key, wanted in {
        "CFBundleInfoDictionaryVersion": "6.0", "CFBundlePackageType": "APPL", "CFBundleExecutable": "Ostrel",
        "CFBundleName": "Ostrel", "CFBundleShortVersionString": version, "LSMinimumSystemVersion": "13.0",
        "NSPrincipalClass": "NSApplication", "LSUIElement": True, "LSMultipleInstancesProhibited": True, "NSHighResolutionCapable": True,
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
    expect((build.bundle / "Contents/Resources" / icon).is_file(), f"Info.plist: the icon {icon} is not in the bundle")
    return info


def check_entitlements():
    content = (PACKAGING / "Ostrel.entitlements").read_bytes()
    expect(b"<!--" not in content, "entitlements: the system refuses comments")
    entitlements = parsed("entitlements", content)
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


def check_plain_build(version):
    with tempfile.TemporaryDirectory() as folder:
        build = Build(folder)
        check_signing("plain", build, build.make(), "-", ["."])
        info = check_info(build, version)
        expect(not any(key.startswith("SU") for key in info), "Info.plist: update keys without an update framework")
        check_signing("other build number", build, build.make("-DOSTREL_BUILD_NUMBER=2"), "-", ["."])
        expect(parsed("Info.plist", build.info()).get("CFBundleVersion") == "2", "Info.plist: the build number stays")


def check_updating_build(version):
    with tempfile.TemporaryDirectory() as folder:
        build = Build(folder)
        framework = stub_framework(folder)
        signed = build.make(f"-DOSTREL_UPDATE_FRAMEWORK={framework}", f"-DOSTREL_UPDATE_FEED={FEED}",
                            f"-DOSTREL_UPDATE_PUBLIC_KEY={PUBLIC_KEY}", identity="Somebody")
        embedded = "Contents/Frameworks/Sparkle.framework"
        check_signing("updating", build, signed, "Somebody", [
            f"{embedded}/Versions/Current/XPCServices/Installer.xpc", f"{embedded}/Versions/Current/Updater.app", embedded, "."])
        expect((build.bundle / embedded / "Versions/Current").is_symlink(), "the embedded framework has lost its links")
        info = check_info(build, version)
        for key, wanted in {"SUFeedURL": FEED, "SUPublicEDKey": PUBLIC_KEY, "SUEnableAutomaticChecks": True,
                            "SUScheduledCheckInterval": 86400}.items():
            expect(info.get(key) == wanted, f"Info.plist with updates: {key} is {info.get(key)!r}, not {wanted!r}")


check_plain_build(version_of_project())
check_updating_build(version_of_project())
check_entitlements()
check_icon()
print("\n".join(sorted(set(failures))) or "The macOS bundle is whole.")
sys.exit(bool(failures))
