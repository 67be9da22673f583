"""Small faults in C++ sources, and sources that hold many of them at once: each is a copy of its function's body that
runs if the environment asks for it, so that one build serves all faults (mutant schemata: Untch, Offutt and Harrold,
"Mutation analysis using mutant schemata", ISSTA 1993)."""
import collections
import hashlib
import re

SWAPS = [
    (r" < ", [" <= "]), (r" <= ", [" < "]), (r" > ", [" >= "]), (r" >= ", [" > "]),
    (r" == ", [" != "]), (r" != ", [" == "]), (r" && ", [" || "]), (r" \|\| ", [" && "]),
    (r" \+ ", [" - "]), (r" - ", [" + "]), (r" \* (?=[\w(])", [" + "]), (r" / ", [" * "]),
    (r" \+= ", [" -= "]), (r" -= ", [" += "]), (r"\+\+(?=\w)", ["--"]), (r"--(?=\w)", ["++"]),
    (r"\btrue\b", ["false"]), (r"\bfalse\b", ["true"]),
    (r"\bstd::min\b", ["std::max"]), (r"\bstd::max\b", ["std::min"]),
    (r"(?<![\w.])0(?![\w.x'])", ["1"]), (r"(?<![\w.])1(?![\w.'])", ["2", "0"]), (r"(?<![\w.])([2-9]|\d{2,})(?![\w.'])", ["0"]),
    (r"\bif \(", ["if (!"]),
]
STATEMENT = re.compile(r"^\s+(?!return\b|using\b|case\b|break\b|continue\b|const\b|auto\b|static|throw\b|else\b|default\b)"
                       r"[\w:*&>\[\].()-]+(\(.*\)| [-+*/|&]?= .*|\+\+|--);$")
CONTAINER = re.compile(r"^\s*(template\s*<.*>\s*)?(inline\s+)?(namespace|class|struct|union|enum|extern\s+\"_*\")\b", re.S)

# file, line number, what is changed, the line's text, and the text instead of it.
Mutant = collections.namedtuple("Mutant", "file line what before after")


def identity(mutant):
    """The same for a mutant whose line has only moved."""
    return hashlib.sha1("\0".join([mutant.file, mutant.what, mutant.before.strip()]).encode()).hexdigest()[:16]


def code_lines(text):
    """(number, line) of what is code: no comments, preprocessor, or assertions at compile time."""
    in_comment = False
    for number, line in enumerate(text.split("\n"), 1):
        bare = line.strip()
        in_comment = in_comment or bare.startswith("/*")
        skipped = in_comment or bare.startswith(("//", "#", "static_assert", "using ", "namespace ", "template", "extern"))
        in_comment = in_comment and "*/" not in bare
        if bare and not skipped:
            yield number, line


def mutants_of(file, text):
    """The mutants within the function bodies of a file."""
    bodies = function_bodies(text)
    lines = text.split("\n")
    return [m for m in every_mutant(file, text) if body_of(m, bodies, lines) is not None]


def every_mutant(file, text):
    before = ""
    for number, line in code_lines(text):
        code = re.sub(r'"(\\.|[^"\\])*"', lambda found: '"' + "_" * (len(found[0]) - 2) + '"', line.split("//")[0])
        for pattern, replacements in SWAPS:
            for match in re.finditer(pattern, code):
                for new in replacements:
                    after = line[:match.start()] + new + line[match.end():]
                    if new == "if (!":
                        after = negated(line, code, match)
                    if after is not None:
                        yield Mutant(file, number, f"{match[0].strip()} to {new.strip()} at {match.start() + 1}", line, after)
        if (STATEMENT.match(code) or code.strip() == "break;") and before.rstrip().endswith((";", "{", "}")):
            yield Mutant(file, number, "deleted", line, "")
        before = code


def negated(line, code, match):
    """The line with a one-line condition turned round; nothing where it goes on or declares something."""
    depth = 0
    for at in range(match.end() - 1, len(code)):
        depth += {"(": 1, ")": -1}.get(code[at], 0)
        if depth == 0:
            inside = line[match.end():at]
            return None if ";" in inside else f"{line[:match.end()]}!({inside}){line[at:]}"
    return None


def masked(text):
    """The text with comments, literals and preprocessor lines blanked, character by character."""
    def blank(found):
        return re.sub(r"[^\n]", "_", found[0]) if found[0][0] in "\"'" else re.sub(r"[^\n]", " ", found[0])
    pattern = r"//[^\n]*|/\*.*?\*/|R\"(\w*)\(.*?\)\1\"|\"(?:\\.|[^\"\\\n])*\"|(?<![0-9a-fA-F])'(?:\\.|[^'\\\n])+'"
    text = re.sub(pattern, blank, text, flags=re.S)
    return re.sub(r"^[ \t]*#(?:\\\n|[^\n])*", blank, text, flags=re.M)


def function_bodies(text):
    """(first, last) of each function's body: the offsets behind its opening brace and of its closing one."""
    code = masked(text)
    bodies, head, at = [], 0, 0
    while at < len(code):
        letter = code[at]
        if letter in ";}" or (letter == ":" and re.search(r"\b(public|private|protected)\s*$", code[head:at])):
            head = at + 1
        elif letter == "(":
            at = closing(code, at, "()")
        elif letter == "{":
            before = code[head:at]
            if CONTAINER.match(before) and not re.search(r"=", before):
                head = at + 1
            else:
                end = closing(code, at, "{}")
                assigned = "=" in re.sub(r"operator\s*[^\s\w(]+", "", outside_parentheses(before))
                if "(" in before and not assigned and before.endswith((" ", "\n")):
                    bodies.append((at + 1, end))
                    head = end + 1
                at = end
        at += 1
    return bodies


def outside_parentheses(code):
    while (shorter := re.sub(r"\([^()]*\)", "", code)) != code:
        code = shorter
    return code


def closing(code, at, pair):
    depth = 0
    for i in range(at, len(code)):
        depth += (code[i] == pair[0]) - (code[i] == pair[1])
        if depth == 0:
            return i
    return len(code)


def body_of(mutant, bodies, lines):
    """The body that a mutant's change lies in; None if it lies elsewhere."""
    start = sum(len(line) + 1 for line in lines[:mutant.line - 1])
    same = next((i for i, (a, b) in enumerate(zip(mutant.before, mutant.after)) if a != b), 0)
    return next(((first, last) for first, last in bodies if first <= start + same < last), None)


def planted(text, numbered):
    """The text with the mutants, given as (number, mutant), in copies of their bodies; numbers are in the order of lines.

    Also returns (first line, last line, number) of each copy, for errors of the compiler.
    """
    lines = text.split("\n")
    bodies = function_bodies(text)
    by_body = collections.defaultdict(list)
    for number, mutant in numbered:
        by_body[body_of(mutant, bodies, lines)].append((number, mutant))
    out, done, regions = "", 0, []
    for (first, last), inside in sorted(by_body.items()):
        out += text[done:first] + f"\nif (mutants::within({inside[0][0]}, {inside[-1][0]})) {{\n"
        for number, mutant in inside:
            out += f"if (mutants::chosen == {number}) {{"
            begins = out.count("\n") + 1
            changed = "\n".join(lines[:mutant.line - 1] + [mutant.after] + lines[mutant.line:])
            out += changed[first:last + len(changed) - len(text)] + "\n}\nelse "
            regions.append((begins, out.count("\n"), number))
        out += "{" + text[first:last] + "\n}\n} else {" + text[first:last] + "\n}\n"
        done = last
    return out + text[done:], regions


# Included before everything else. It calls the kernel itself, because some tests stand in for the library's functions
# and count them.
SWITCH = r"""#pragma once
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <sys/mman.h>
#include <sys/syscall.h>
#include <unistd.h>
namespace mutants __attribute__((visibility("hidden"))) {
inline unsigned char* openTrace() {
  const char* name = std::getenv("VANTOREL_MUTANT_TRACE");
  if (name == nullptr) { return nullptr; }
  const long file = syscall(SYS_openat, AT_FDCWD, name, O_RDWR | O_CLOEXEC);
  if (file < 0) { return nullptr; }
  const long memory = syscall(SYS_mmap, nullptr, kCount, PROT_READ | PROT_WRITE, MAP_SHARED, file, 0);
  syscall(SYS_close, file);
  return memory == -1 ? nullptr : reinterpret_cast<unsigned char*>(memory);
}
inline unsigned char* const trace = openTrace();
inline const char* const text = std::getenv("VANTOREL_MUTANT");
inline const unsigned chosen = text == nullptr ? 0U : static_cast<unsigned>(std::strtoul(text, nullptr, 10));
[[gnu::always_inline]] constexpr bool within(unsigned first, unsigned last) {
  if (__builtin_is_constant_evaluated()) { return false; }
  if (__builtin_expect(trace != nullptr, 0)) { for (unsigned n = first; n <= last; ++n) { trace[n] = 1; } }
  return __builtin_expect(chosen - first <= last - first, 0);
}
}  // namespace mutants
"""
