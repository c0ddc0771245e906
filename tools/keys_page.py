"""The generated tables of docs/keys.md: camview's keys from its help text, camtool's options from its tables."""
import re
from pathlib import Path

LITERALS = r'((?:"(?:[^"\\]|\\.)*"\s*)+)'
OPTION = re.compile(r'\{\s*"(--[\w-]+)",\s*(?:"([^"]*)"|nullptr),\s*' + LITERALS + ",")
COMMAND = re.compile(r'const Command k\w+Command = \{\s*"(\w+)",\s*"([^"]*)",\s*' + LITERALS)


def joined(literals: str) -> str:
    return "".join(re.findall(r'"((?:[^"\\]|\\.)*)"', literals)).replace('\\"', '"').replace("|", "\\|")


def camview_keys(root: Path) -> str:
    text = re.search(r'IDS_KEYS_TEXT\s+"(.*)"', (root / "camview/texts.rc").read_text(encoding="utf-8"))[1]
    rows = [row.split("\\t") for row in text.split("\\n")]
    lines = [f"| {key} | {action} |" if key else f"| **{action}** | |" for key, action in rows]
    return "| Key | Action |\n|---|---|\n" + "\n".join(lines)


def camtool_options(root: Path) -> str:
    parts = []
    for source in sorted((root / "camtool").glob("*.cpp")):
        text = source.read_text(encoding="utf-8")
        command = COMMAND.search(text)
        if not command:
            continue
        rows = [f"| `{f'{name} {value}'.strip()}` | {joined(about)} |" for name, value, about in OPTION.findall(text)]
        table = "| Option | Meaning |\n|---|---|\n" + "\n".join(rows) if rows else "No options."
        usage = f"camtool {command[1]} {command[2]}".strip()
        parts.append(f"### camtool {command[1]}\n\n`{usage}` {joined(command[3])}.\n\n{table}")
    return "\n\n".join(parts)


def with_tables(text: str, root: Path) -> str:
    """The page with what follows each mark, up to the next heading of its level, written anew."""
    for mark, table in ("<!-- keys of camview -->", camview_keys), ("<!-- options of camtool -->", camtool_options):
        text = re.sub(re.escape(mark) + r"\n.*?(?=^## |\Z)", lambda _: f"{mark}\n\n{table(root)}\n\n", text,
                      flags=re.MULTILINE | re.DOTALL)
    return text.rstrip("\n") + "\n"
