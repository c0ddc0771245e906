"""Converts a public header to Markdown for the reference.

A header begins with a comment. Blank lines separate groups of declarations, each with one comment above it. A group
becomes a section: constants and plain structs become tables, everything else remains code. A comment that is followed
by a blank line applies to the sections below it.
"""
import re
import textwrap

WIDTH = 118
CONSTANT = re.compile(r"(?:inline |static )*constexpr [^()=]*?\b(k[A-Z]\w*)(?:\[\])? = ")
FUNCTION = re.compile(r"[\w>&*] [*&]?(?:operator )?([\w:]+)\(|^~?(\w+)\(", re.MULTILINE)


def escaped(text: str) -> str:
    return re.sub(r"(?<!`)<(?=\w)", r"\<", text)


def paragraph(lines: list[str], indent: str = "") -> str:
    """Prose, wrapped again; escapes text that a new line break would turn into a list item or a heading."""
    text = textwrap.wrap(escaped(" ".join(line.strip() for line in lines)), WIDTH - len(indent), break_on_hyphens=False)
    text = [re.sub(r"^(\d+)([.)]\s)", r"\1\\\2", re.sub(r"^([-+*#>=]+ )", r"\\\1", line)) for line in text]
    return ("\n" + indent).join(text)


def table(head: list[str], rows: list[list[str]]) -> str:
    """A table without its empty columns."""
    used = [column for column in range(len(head)) if any(row[column] for row in rows)]
    lines = [[head[column] for column in used], ["---"] * len(used)]
    lines += [[row[column].replace("|", "\\|") for column in used] for row in rows]
    return "\n".join("| " + " | ".join(line) + " |" for line in lines)


def code(lines: list[str], language: str = "cpp") -> str:
    return f"```{language}\n" + textwrap.dedent("\n".join(lines)).strip("\n") + "\n```"


def aligned_rows(lines: list[str]) -> list[list[str]] | None:
    """The rows of an aligned block of two columns, with wrapped cells joined; None for any other block."""
    lines = textwrap.dedent("\n".join(lines)).splitlines()
    first = re.match(r"\S.*?  +(?=\S)", lines[0])
    if not first:
        return None
    edge = first.end()
    rows: list[list[str]] = []
    for line in lines:
        left, right = line[:edge].rstrip(), line[edge:]
        if line[edge - 1 : edge].strip() or right.startswith(" ") or "  " in left or "  " in right:
            return None
        if left and right and not left.startswith(" "):
            rows.append([left, right])
        elif rows and bool(left) != bool(right):
            rows[-1][0 if left else 1] += " " + (left or right)
        else:
            return None
    return rows


def listed(lines: list[str]) -> str:
    items: list[list[str]] = []
    for line in lines:
        if line.lstrip().startswith("- "):
            items.append([line.lstrip()[2:]])
        else:
            items[-1].append(line)
    return "\n".join("- " + paragraph(item, "  ") for item in items)


def block(lines: list[str]) -> list[str]:
    """One block of a comment: prose, optionally an indented or aligned part, optionally prose again."""
    special = [i for i, line in enumerate(lines) if line.startswith(" ") or re.search(r"\S {2,}\S", line)]
    if not special:
        return [paragraph(lines)]
    start, end = special[0], special[-1] + 1
    middle = lines[start:end]
    if all(line.startswith("  ") for line in middle) and middle[0].startswith("  - "):
        shown = listed(middle)
    else:
        rows = aligned_rows(middle)
        shown = table(["", " "], [[escaped(cell) for cell in row] for row in rows]) if rows else code(middle, "text")
    return [paragraph(part) for part in (lines[:start],) if part] + [shown] + \
        [paragraph(part) for part in (lines[end:],) if part]


def prose(comment: list[str]) -> str:
    """A comment without slashes, as Markdown."""
    blocks: list[list[str]] = [[]]
    for line in comment:
        if line:
            blocks[-1].append(line)
        elif blocks[-1]:
            blocks.append([])
    text = "\n\n".join(part for lines in blocks if lines for part in block(lines))
    return text.replace("\n```\n\n```text\n", "\n\n")


def split_comment(line: str) -> tuple[str, str, str]:
    """Code, slashes and comment of a line; slashes within quotes begin no comment."""
    found = re.match(r'((?:"(?:\\.|[^"\\])*"|[^"/]|/(?!/))*)(//)?(.*)', line)
    return found.group(1), found.group(2) or "", found.group(3)


def without_slashes(line: str) -> str:
    return line.strip().removeprefix("//").removeprefix(" ")


def depth_of(line: str) -> int:
    line = re.sub(r'"(?:\\.|[^"\\])*"', "", split_comment(line)[0])
    return sum(line.count(c) for c in "({[") - sum(line.count(c) for c in ")}]")


def parted(lines: list[str]) -> list[list[str]]:
    """The groups: parts separated by blank lines outside of braces."""
    groups: list[list[str]] = [[]]
    depth = 0
    for line in lines:
        if not line and not depth:
            groups.append([])
        else:
            groups[-1].append(line)
        depth += depth_of(line)
    return [group for group in groups if group]


def statements(lines: list[str]) -> list[list[str]]:
    """Each declaration with its comments above and after it; `lines` are at one level of braces."""
    found: list[list[str]] = [[]]
    depth = 0
    for line in lines:
        bare = split_comment(line)[0].rstrip()
        behind = len(found) > 1 and not found[-1] and not bare and line.startswith("    ")
        (found[-2] if behind else found[-1]).append(line)
        depth += depth_of(line)
        if not depth and bare.endswith((";", "}", ",", ":")):
            found.append([])
    return [statement for statement in found if any(line.strip() for line in statement)]


def taken_apart(statement: list[str]) -> tuple[list[str], str, str]:
    """The comment above a declaration, the declaration as one line, and the comment after it."""
    above: list[str] = []
    text, behind = [], []
    for line in statement:
        bare, mark, comment = split_comment(line)
        if mark and not bare.strip() and not text:
            above.append(without_slashes(line))
            continue
        if bare.strip():
            text.append(bare.strip())
        if mark:
            behind.append(comment.strip())
    return above, " ".join(text), " ".join(behind)


def declared(statement: list[str]) -> list[str]:
    """A function's declaration without its body."""
    text = "\n".join(statement)
    at = 0
    while (opening := text.find("(", at)) >= 0:
        depth, at = 1, opening + 1
        while depth:
            depth += {"(": 1, ")": -1}.get(text[at], 0)
            at += 1
        rest = re.match(r"( const)?( noexcept)?( = (?:default|delete))?", text[at:])
        if text[:opening].endswith("operator"):
            continue
        return (text[:at] + rest.group() + ";").splitlines()
    return statement


def split_top(text: str) -> list[str]:
    parts, depth, quoted = [""], 0, False
    for c in text:
        quoted ^= c == '"'
        depth += 0 if quoted else {"(": 1, "{": 1, ")": -1, "}": -1}.get(c, 0)
        if c == "," and not depth and not quoted:
            parts.append("")
        else:
            parts[-1] += c
    return [part.strip() for part in parts if part.strip()]


def constant_rows(statement: list[str]) -> list[list[str]]:
    above, text, behind = taken_apart(statement)
    start = CONSTANT.search(text).start(1)
    rows = []
    for part in split_top(text[start:].rstrip(";")):
        name, _, value = part.partition(" = ")
        rows.append([f"`{name.removesuffix('[]')}`", f"`{value}`", escaped(" ".join([*above, behind]).strip())])
    if len(rows) > 1 and rows[0][2]:
        raise ValueError(f"{text}: constants of one declaration share a comment; put it above the group")
    return rows


def enum_rows(statement: list[str]) -> list[list[str]]:
    rows = []
    for value in statements(statement[1:-1]):
        above, text, behind = taken_apart(value)
        name, _, number = text.rstrip(",").partition(" = ")
        rows.append([f"`{name}`", f"`{number}`" if number else "", escaped(" ".join([*above, behind]).strip())])
    return rows


def record(statement: list[str], sizes: dict[str, str]) -> str:
    """A plain struct as a table of its fields; one with functions as the code of its public part."""
    head = next(line for line in statement if re.match(r"(struct|class) ", line))
    inner = statement[statement.index(head) + 1 : -1]
    members = statements(inner)
    plain = head.startswith("struct") and not any(
        re.search(r"\w\(", line) for line in inner if "decltype" not in line and not line.strip().startswith("//")
    ) and not any("struct " in line or "static " in line for line in inner)
    if plain:
        rows = [
            [f"`{text.rstrip(';')}`", escaped(" ".join([*above, behind]).strip())]
            for above, text, behind in map(taken_apart, members)
        ]
        name = head.split()[1]
        size = f" ({sizes[name]} bytes)" if name in sizes else ""
        if size or any(meaning for _, meaning in rows):
            return table([f"`{name}`{size}", "Meaning"], rows)
        return code(statement)
    lines = statement[: statement.index(head) + 1]
    for member in members:
        if member[-1].strip() == "private:":
            break
        body = [line for line in member if line.strip()]
        comment = [line for line in body if line.strip().startswith("//")]
        rest = [line for line in body if line not in comment]
        is_function = re.search(r"[\w\])]\(", " ".join(rest)) and "struct " not in rest[0]
        lines += ([""] if member[0] == "" else []) + comment + (declared(rest) if is_function else rest)
    return code([*lines, "};"])


def names_in(statement: list[str]) -> list[str]:
    _, text, _ = taken_apart(statement)
    if CONSTANT.match(text):
        return [row[0].strip("`") for row in constant_rows(statement)]
    text = re.sub(r"^template <[^>]*> ", "", text)
    for pattern in (r"(?:enum class|enum|struct|class|using) (\w+)", r"extern .*\b(\w+);",
                    r"inline constexpr \w+ (\w+)"):
        if found := re.match(pattern, text):
            return [found.group(1)]
    found = FUNCTION.search(text)
    return [found.group(1)] if found else []


def group_text(group: list[str], sizes: dict[str, str]) -> str:
    """One group: its comment, then its declarations in order."""
    lines = list(group)
    above = []
    while lines and lines[0].startswith("//"):
        above.append(without_slashes(lines.pop(0)))
    parts = [prose(above)] if above else []
    body = statements(lines)
    if not body:
        return "---\n\n" + parts[0]
    rows: list[list[str]] = []
    single: list[str] = []
    plain: list[str] = []

    def finish() -> None:
        if len(rows) == 1 and not rows[0][2]:
            plain.insert(0, single[0])
        elif rows:
            parts.append(table(["Name", "Value", "Meaning"], rows))
        if plain:
            parts.append(code(plain))
        rows.clear()
        plain.clear()

    for statement in body:
        comment, text, _ = taken_apart(statement)
        if not text:
            finish()
            parts.append(prose(comment))
            continue
        constant = CONSTANT.match(text)
        if constant and len(" ".join(statement)) < 400:
            if plain:
                finish()
            rows += constant_rows(statement)
            single[:] = statement
            continue
        if rows:
            finish()
        bare = next(line for line in statement if not line.startswith("//"))
        if re.match(r"(struct|class) \w+ .*\{$|(struct|class) \w+ \{$", bare) or re.match(r"template.*", bare) and any(
            line.startswith("class ") for line in statement
        ):
            finish()
            parts.append(record(statement, sizes))
        elif bare.startswith("enum "):
            finish()
            parts.append(table(["Name", "Value", "Meaning"], enum_rows(statement)))
        elif "(" in text and text.endswith("}") and not constant:
            comment = [line for line in statement if line.startswith("//")]
            plain += comment + declared(statement[len(comment) :])
        else:
            plain += statement
    finish()
    names = list(dict.fromkeys(name for statement in body for name in names_in(statement)))
    shown = [f"`{name}`" for name in names]
    if len(names) > 3:
        shown = [name for name in shown if not name.startswith("`k")] or shown
    title = ", ".join(shown) if len(shown) <= 3 else f"{shown[0]} to {shown[-1]}"
    return f"#### {title}\n\n" + "\n\n".join(parts).replace("\n```\n\n```cpp\n", "\n\n")


def header_section(name: str, text: str) -> str:
    """The section of the header `name` with content `text`."""
    intro, _, rest = text.partition("#pragma once")
    sizes = dict(re.findall(r"sizeof\((\w+)\) == (\d+)", rest))
    rest = re.sub(r"^#.*\n", "", rest, flags=re.MULTILINE)
    rest = re.sub(r"^static_assert\(.*?\);\n", "", rest, flags=re.MULTILINE | re.DOTALL)
    inner = re.search(r"^namespace kv \{\n(.*)^\}  // namespace kv", rest, re.MULTILINE | re.DOTALL)
    parts = [f"### `{name}`", prose([without_slashes(line) for line in intro.splitlines()])]
    if "#define" in text:
        parts.append(code(re.sub(r' "?@\w+@"?', "", text.partition("#pragma once")[2].strip()).splitlines()))
    if inner:
        parts += [group_text(group, sizes) for group in parted(inner.group(1).splitlines())]
    return "\n\n".join(parts)
