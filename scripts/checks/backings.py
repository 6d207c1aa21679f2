"""Every operation that the object headers declare and leave to the backings is defined once for macOS and once for Linux.

The linker says so too, but only on the system it links for, and only for what is used there.
"""
import pathlib
import re
import sys

C_HALF = {"ApplicationServices.h", "CFRef.h", "Lock.h", "PropertyList.h"}


def without_comments(text):
    text = re.sub(r"//[^\n]*", "", text)
    return re.sub(r"^[ \t]*#[^\n]*", "", text, flags=re.M)


def statements(body):
    """Yields (head, inner) for what stands at the top of a scope: inner is the text between braces, or None."""
    head, i, parentheses = "", 0, 0
    while i < len(body):
        parentheses += {"(": 1, ")": -1}.get(body[i], 0)
        if body[i] == "{" and parentheses == 0:  # within them they are a default argument's
            depth, start = 1, i + 1
            while depth:
                i += 1
                depth += {"{": 1, "}": -1}.get(body[i], 0)
            yield head.strip(), body[start:i]
            head = ""
        elif body[i] == ";":
            yield head.strip(), None
            head = ""
        else:
            head += body[i]
        i += 1


def declared(body, scope=""):
    """Yields the qualified names of functions that are declared but neither defined there nor pure."""
    for head, inner in statements(body):
        head = re.sub(r"^(public|private|protected)\s*:\s*", "", head)
        head = re.sub(r"\b(public|private|protected):", "", head).strip()
        if re.match(r"(inline )?namespace\b", head):
            yield from declared(inner, scope)
        elif inner is not None:
            kind = re.match(r"(?:template <.*> )?(?:class|struct)\s+(?:\w+\(.*?\)+\s+)?(\w+)[^(]*$", head, re.S)
            if kind:
                yield from declared(inner, kind[1])
        elif "(" in head and not re.search(r"=\s*(0|default|delete)$|^\s*(using|friend|template|return)\b|operator", head):
            while (stripped := re.sub(r"<[^<>]*>", "", head)) != head:  # std::function<void()> is no function here
                head = stripped
            name = re.search(r"(~?\w+)\s*\(", head)
            # A member initialised with a call is no function.
            if name and "=" not in head[: name.start()]:
                yield f"{scope}::{name[1]}" if scope else name[1]


def definitions(name, text):
    qualified = re.escape(name)
    # At the start of a line or after a type, with a body or an initialiser list behind the arguments.
    pattern = r"^(?![ \t])[\w:<>,&* \t]*?(?<![\w:])(?:(?:ns|sm|spu)::)?" + qualified + r"\s*\([^;{}]*\)[^;{}()]*(?:\{|:[^;]*?\{|= default;)"
    return len(re.findall(pattern, text, re.M))


def sources(*folders):
    files = [path for folder in folders for path in sorted(pathlib.Path(folder).rglob("*")) if path.suffix in (".cpp", ".mm")]
    return "\n".join(without_comments(path.read_text()) for path in files)


def main():
    backings = {"macOS": sources("platform/macos"), "Linux": sources("platform/linux", "platform/portable")}
    operations = []
    for header in sorted(pathlib.Path("platform").glob("*.h")):
        if header.name not in C_HALF:
            text = without_comments(header.read_text())
            operations += [name for name in declared(text) if not definitions(name, text)]
    failed = False
    for name in sorted(set(operations)):
        for backing, text in backings.items():
            found = definitions(name, text)
            wanted = operations.count(name)  # overloads share a name
            if found != wanted:
                print(f"{name}: declared {wanted} times, defined {found} times for {backing}")
                failed = True
    print(f"{len(set(operations))} operations checked.")
    sys.exit(failed or not operations)


main()
