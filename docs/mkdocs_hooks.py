# SPDX-License-Identifier: Apache-2.0
"""Hooks of mkdocs: link names in code to the API reference, and check all links and anchors."""
import html.parser
import logging
import os
import re
import urllib.parse
import xml.etree.ElementTree

log = logging.getLogger("mkdocs.hooks")
api = {}  # from "Class", "Class::Member", "Member" or "header.h" to its places in the API reference, in order


def on_config(config):
    """Reads the names that Doxygen documented."""
    for compound in xml.etree.ElementTree.parse(os.path.join(config["docs_dir"], "..", "api.tag")).iter("compound"):
        scope = compound.findtext("name").split("::")[-1]
        page = compound.findtext("filename").removesuffix(".html") + ".html"
        if compound.get("kind") != "namespace":
            api.setdefault(scope, []).append(page)
        for member in compound.iter("member"):
            url = f"{member.findtext('anchorfile')}#{member.findtext('anchor')}"
            for name in (member.findtext("name"), f"{scope}::{member.findtext('name')}"):
                api.setdefault(name, []).append(url)
    return config


def on_page_content(content, page, **_):
    up = "../" * page.url.count("/")
    scope = ""

    def link(match):
        nonlocal scope
        name = match.group(1).removesuffix("()")
        if "::" in name:
            scope = name.rsplit("::", 1)[0]
        urls = api.get(f"{scope}::{name}") or api.get(name, [])
        # Overloads are on one page; a name that is on several is ambiguous.
        is_unambiguous = len({url.split("#")[0] for url in urls}) == 1
        return f'<a href="{up}api/{urls[0]}">{match.group(0)}</a>' if is_unambiguous else match.group(0)

    # Skip examples, headings and links. A class applies to the members after it in the same row, item or paragraph.
    result = ""
    for part in re.split(r"(<pre.*?</pre>|<h\d.*?</h\d>|<a .*?</a>|<tr>|<li>|<p>)", content, flags=re.S):
        if part in ("<tr>", "<li>", "<p>"):
            scope = ""
        is_text = not part.startswith(("<pre", "<h", "<a "))
        result += re.sub(r"<code>([\w:.]+(?:\(\))?)</code>", link, part) if is_text else part
    return result


class Links(html.parser.HTMLParser):
    def __init__(self, path):
        super().__init__()
        self.anchors, self.targets = set(), set()
        with open(path, encoding="utf-8") as file:
            self.feed(file.read())

    def handle_starttag(self, tag, attrs):
        for name, value in attrs:
            if name == "id" or (tag == "a" and name == "name"):
                self.anchors.add(value)
            elif name in ("href", "src") and value:
                self.targets.add(value)


def on_post_build(config):
    pages = {}
    for directory, _, names in os.walk(config["site_dir"]):
        for name in names:
            # 404.html has absolute links, which only a server resolves.
            if name.endswith(".html") and name != "404.html":
                path = os.path.join(directory, name)
                pages[path] = Links(path)
    for path, page in pages.items():
        for target in page.targets:
            scheme, host, to, _, anchor = urllib.parse.urlsplit(target)
            found = os.path.normpath(os.path.join(os.path.dirname(path), urllib.parse.unquote(to))) if to else path
            if scheme or host:
                continue
            if not os.path.exists(found) or anchor and found in pages and anchor not in pages[found].anchors:
                log.warning("%s: dead link to %s", os.path.relpath(path, config["site_dir"]), target)
