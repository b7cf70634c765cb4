#!/usr/bin/env python3
"""Makes the user's manual: of each chapter in Markdown one page of plain HTML.

usage: tools/manual.py SOURCES FOLDER VERSION
"""

import html
import pathlib
import re
import shutil
import subprocess
import sys

PAGE = """<!DOCTYPE html>
<html lang="en">
<head>
<meta charset="utf-8">
<meta name="viewport" content="width=device-width, initial-scale=1">
<meta name="color-scheme" content="light dark">
<title>{title}</title>
<link rel="stylesheet" href="manual.css">
</head>
<body>
<a class="skip" href="#text">Skip to the text</a>
<nav aria-label="Chapters">
<ul>
{chapters}
</ul>
</nav>
<main id="text">
{text}
{onward}
</main>
<footer>Tarvex Cloud {version}</footer>
</body>
</html>
"""


def html_of(path, *options):
    """The document's HTML, with the anchors that readers of Markdown on the web know."""
    command = ["cmark-gfm", "--extension", "table", *options, path]
    text = subprocess.run(command, check=True, capture_output=True, text=True).stdout

    def anchored(heading):
        words = html.unescape(re.sub("<.*?>", "", heading[2])).lower()
        anchor = re.sub(r"[^\w -]", "", words).replace(" ", "-")
        return f'<h{heading[1]} id="{anchor}">{heading[2]}</h{heading[1]}>'

    return re.sub(r"<h([1-6])>(.*?)</h\1>", anchored, text)


def chapters_of(sources):
    """The names of the chapters in their order, which the first of them lists."""
    return ["index", *re.findall(r"^\d+\. \[.*?\]\(([\w-]+)\.md\)", (sources / "index.md").read_text(), re.MULTILINE)]


def main():
    if len(sys.argv) != 4:
        raise SystemExit(__doc__)
    sources, folder, version = pathlib.Path(sys.argv[1]), pathlib.Path(sys.argv[2]), sys.argv[3]
    texts = {name: html_of(sources / f"{name}.md") for name in chapters_of(sources)}
    titles = {name: re.search(r"<h1.*?>(.*?)</h1>", text)[1] for name, text in texts.items()}
    names = list(texts)
    shutil.rmtree(folder, ignore_errors=True)
    shutil.copytree(sources / "pictures", folder / "pictures")
    shutil.copy(sources / "manual.css", folder)
    for name, following in zip(names, [*names[1:], None]):
        here = {name: ' aria-current="page"'}
        chapters = "\n".join(f'<li><a href="{other}.html"{here.get(other, "")}>{title}</a></li>'
                             for other, title in titles.items())
        onward = f'<p class="onward">Next: <a href="{following}.html">{titles[following]}</a></p>' if following else ""
        title = titles[name] if name == "index" else f"{titles[name]} - Tarvex Cloud"
        text = re.sub(r'(href="[\w-]+)\.md(["#])', r"\1.html\2", texts[name])
        page = PAGE.format(title=title, chapters=chapters, text=text, onward=onward, version=version)
        (folder / f"{name}.html").write_text(page)


if __name__ == "__main__":
    main()
