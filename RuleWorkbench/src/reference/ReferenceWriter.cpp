// The two forms of the document. Everything that comes from rules goes through `escaped`.
#include "reference/ReferenceWriter.h"

#include <algorithm>

namespace tarn::workbench {

namespace {

/// Text that control characters and marks of writing direction cannot disturb. Line ends become blanks.
std::string onOneLine(std::string_view text) {
  std::string result;
  result.reserve(text.size());
  for (std::size_t i = 0; i < text.size(); ++i) {
    auto const byte = static_cast<unsigned char>(text[i]);
    bool const isMark =
        text.compare(i, 2, "\xE2\x80") == 0 && i + 2 < text.size() &&
        ((static_cast<unsigned char>(text[i + 2]) >= 0xAA && static_cast<unsigned char>(text[i + 2]) <= 0xAE) ||
         static_cast<unsigned char>(text[i + 2]) == 0x8E || static_cast<unsigned char>(text[i + 2]) == 0x8F);
    bool const isIsolate = text.compare(i, 2, "\xE2\x81") == 0 && i + 2 < text.size() &&
                           static_cast<unsigned char>(text[i + 2]) >= 0xA6 &&
                           static_cast<unsigned char>(text[i + 2]) <= 0xA9;
    if (isMark || isIsolate) {
      i += 2;
    } else if (byte < 0x20 || byte == 0x7F) {
      if (!result.empty() && result.back() != ' ') result += ' ';
    } else {
      result += text[i];
    }
  }
  return result;
}

// HTML

std::string escapedHtml(std::string_view text) {
  std::string result;
  for (char const c : onOneLine(text)) {
    switch (c) {
      case '&':
        result += "&amp;";
        break;
      case '<':
        result += "&lt;";
        break;
      case '>':
        result += "&gt;";
        break;
      case '"':
        result += "&quot;";
        break;
      case '\'':
        result += "&#39;";
        break;
      default:
        result += c;
    }
  }
  return result;
}

constexpr std::string_view style = R"css(
:root { color-scheme: light dark; --text: #1d2430; --quiet: #576072; --page: #ffffff; --panel: #f4f6f9; --line: #d5dae3;
  --link: #0b5cad; --mark: #8a4b00; --mark-back: #fff1dc; }
@media (prefers-color-scheme: dark) { :root { --text: #e4e8ef; --quiet: #a3adbe; --page: #14181f; --panel: #1d232d;
  --line: #363f4d; --link: #7db7f5; --mark: #ffc988; --mark-back: #3a2b17; } }
* { box-sizing: border-box; }
html { scroll-padding-top: 1rem; }
body { margin: 0; font: 1rem/1.55 system-ui, sans-serif; color: var(--text); background: var(--page); }
a { color: var(--link); }
a:focus-visible, summary:focus-visible, input:focus-visible { outline: 3px solid var(--link); outline-offset: 2px; border-radius: 2px; }
.skip { position: absolute; left: -100rem; }
.skip:focus { left: 1rem; top: 1rem; padding: .5rem 1rem; background: var(--panel); z-index: 1; }
.page { display: grid; grid-template-columns: minmax(14rem, 20rem) minmax(0, 1fr); max-width: 84rem; margin: 0 auto; }
nav { position: sticky; top: 0; align-self: start; height: 100vh; overflow: auto; padding: 1.25rem 1rem;
  border-right: 1px solid var(--line); font-size: .9rem; }
.search { margin: 0 0 1rem; }
.search label { display: block; font-weight: 600; }
.search input { width: 100%; min-height: 2rem; margin: .25rem 0; padding: .2rem .5rem; font: inherit; color: inherit;
  background: var(--page); border: 1px solid var(--quiet); border-radius: .25rem; }
.search p { margin: 0; color: var(--quiet); }
.search span { display: block; color: var(--quiet); }
nav summary { font-weight: 600; cursor: pointer; }
nav ul { list-style: none; margin: .5rem 0 0; padding: 0; }
nav li { padding: .12rem 0; overflow-wrap: anywhere; }
nav a { text-decoration: none; }
nav a:hover { text-decoration: underline; }
main { padding: 1.25rem 2rem 4rem; min-width: 0; }
h1 { font-size: 1.8rem; line-height: 1.2; margin: 0 0 1rem; }
h2 { font-size: 1.4rem; line-height: 1.25; margin: 3rem 0 .5rem; padding-top: 1rem; border-top: 2px solid var(--line); }
h3 { font-size: 1.1rem; margin: 1.75rem 0 .25rem; color: var(--quiet); }
h4 { font-size: 1.05rem; margin: 0; }
h1, h2, h3, h4, p, dd { overflow-wrap: anywhere; }
a.self { color: inherit; text-decoration: none; }
a.self:hover { text-decoration: underline; }
nav a, dd a { display: inline-block; min-height: 1.5rem; line-height: 1.5rem; }
p { margin: .4rem 0; max-width: 46rem; }
article { margin: .75rem 0; padding: .8rem 1rem; border: 1px solid var(--line); border-radius: .5rem; background: var(--panel); }
article h3 { font-size: 1.05rem; margin: 0; color: inherit; }
article:target { border-color: var(--link); }
.type { content-visibility: auto; contain-intrinsic-size: auto 60rem; }
dl { display: grid; grid-template-columns: 9rem minmax(0, 1fr); gap: .2rem .9rem; margin: .5rem 0 0; font-size: .94rem; }
dt { color: var(--quiet); grid-column: 1; }
dd { margin: 0; grid-column: 2; }
code { font: .9em/1.4 ui-monospace, monospace; padding: .05em .3em; border: 1px solid var(--line); border-radius: .25rem;
  background: var(--page); white-space: pre-wrap; overflow-wrap: anywhere; }
mark { color: var(--mark); background: var(--mark-back); padding: .05em .45em; border-radius: .8em; font-size: .82rem;
  font-weight: 500; white-space: nowrap; }
@media (max-width: 56rem) { .page { display: block; } nav { position: static; height: auto; border-right: 0;
  border-bottom: 1px solid var(--line); } nav ul { max-height: 40vh; overflow: auto; } main { padding: 1rem 1rem 3rem; } }
@media (max-width: 34rem) { dl { grid-template-columns: minmax(0, 1fr); gap: 0; } dd { grid-column: 1; margin-bottom: .45rem; } article { padding: .7rem .8rem; } }
@media print { nav { display: none; } .page { display: block; } .type { content-visibility: visible; } }
)css";

/// The search. The page is whole without it. Texts of the rules stay texts: nothing is put together as HTML.
constexpr std::string_view script = R"js(
(() => {
  'use strict';
  const most = 50;
  const input = document.getElementById('find');
  const list = document.getElementById('found');
  const count = document.getElementById('count');
  let items = null;

  // The reference may be large, so it is read when somebody searches for the first time.
  const read = () => [...document.querySelectorAll('section[id], article[id]')].map((at) => {
    const isEntry = at.tagName === 'ARTICLE';
    const name = at.querySelector('a.self').textContent;
    const owner = isEntry ? at.closest('section').querySelector('a.self').textContent : '';
    const about = isEntry ? at.textContent : (at.querySelector(':scope > p') || name).textContent || '';
    return { id: at.id, name, owner, low: name.toLowerCase(), path: `${owner}/${name}`.toLowerCase(), text: about.toLowerCase() };
  });

  const rank = (item, text) => {
    if (item.low === text || item.path === text) return 0;
    if (item.low.startsWith(text)) return 1;
    if (item.low.includes(` ${text}`)) return 2;
    if (item.low.includes(text)) return 3;
    if (item.path.includes(text)) return 4;
    return item.text.includes(text) ? 5 : 6;
  };

  const show = () => {
    const text = input.value.trim().toLowerCase();
    list.replaceChildren();
    count.textContent = '';
    if (text === '') return;
    items ??= read();
    const hits = items.map((item, order) => ({ item, order, rank: rank(item, text) })).filter((hit) => hit.rank < 6);
    hits.sort((a, b) => a.rank - b.rank || a.order - b.order);
    for (const { item } of hits.slice(0, most)) {
      const line = document.createElement('li');
      const link = document.createElement('a');
      link.href = `#${item.id}`;
      link.textContent = item.name;
      line.append(link);
      if (item.owner) {
        const owner = document.createElement('span');
        owner.textContent = item.owner;
        line.append(owner);
      }
      list.append(line);
    }
    const more = hits.length > most ? `; the first ${most} are listed` : '';
    count.textContent = hits.length === 0 ? 'Nothing found.' : `${hits.length} found${more}.`;
  };

  const links = () => [...list.querySelectorAll('a')];
  input.addEventListener('input', show);
  input.form.addEventListener('submit', (event) => {
    event.preventDefault();
    links()[0]?.click();
  });
  input.form.addEventListener('keydown', (event) => {
    const step = { ArrowDown: 1, ArrowUp: -1 }[event.key];
    if (event.key === 'Escape') {
      input.value = '';
      show();
      input.focus();
    } else if (step) {
      const stops = [input, ...links()];
      const next = stops[stops.indexOf(document.activeElement) + step];
      if (next) {
        next.focus();
        event.preventDefault();
      }
    }
  });
  document.addEventListener('keydown', (event) => {
    if (event.key !== '/' || event.ctrlKey || event.metaKey || event.altKey || event.target === input) return;
    event.preventDefault();
    input.focus();
  });
  input.form.hidden = false;
})();
)js";

class HtmlWriter final : public ReferenceWriter {
 public:
  using ReferenceWriter::ReferenceWriter;

  void begin(std::string const& title, std::vector<ContentsEntry> const& contents) override {
    out()
        << "<!DOCTYPE html>\n<html lang=\"en\">\n<head>\n<meta charset=\"utf-8\">\n"
        << "<meta name=\"viewport\" content=\"width=device-width, initial-scale=1\">\n<title>" << escapedHtml(title)
        << "</title>\n<style>" << style << "</style>\n</head>\n<body>\n"
        << "<a class=\"skip\" href=\"#main\">Skip to the reference</a>\n<div class=\"page\">\n"
        << "<nav aria-label=\"Contents\">\n"
        << "<form class=\"search\" role=\"search\" hidden>\n<label for=\"find\">Find (press /)</label>\n"
        << "<input id=\"find\" type=\"search\" autocomplete=\"off\" spellcheck=\"false\" aria-describedby=\"count\">\n"
        << "<p id=\"count\" role=\"status\"></p>\n<ul id=\"found\"></ul>\n</form>\n"
        << "<details open>\n<summary>Contents</summary>\n<ul>\n";
    for (ContentsEntry const& entry : contents) {
      out() << "<li style=\"padding-left:" << entry.level << "em\"><a href=\"#" << entry.anchor << "\">"
            << escapedHtml(entry.text) << "</a></li>\n";
    }
    out() << "</ul>\n</details>\n</nav>\n<main id=\"main\" tabindex=\"-1\">\n<h1>" << escapedHtml(title) << "</h1>\n";
  }

  void end() override {
    closeDownTo(1);
    out() << "</main>\n</div>\n<script>" << script << "</script>\n</body>\n</html>\n";
  }

  void heading(std::size_t level, std::string const& anchor, TextRuns const& text) override {
    closeDownTo(level);
    if (level <= 2) {
      out() << "<section class=\"" << (level == 2 ? "type" : "chapter") << "\" id=\"" << anchor << "\">\n";
      open_.push_back({level, "</section>\n"});
    } else if (level == 4) {
      out() << "<article id=\"" << anchor << "\">\n";
      open_.push_back({level, "</article>\n"});
    }
    // An entry of a chapter has no heading of level 3 above it.
    bool const isInChapter = level == 4 && open_.size() > 1 && open_[open_.size() - 2].level == 1;
    std::size_t const shown = level < 3 ? 2 : isInChapter ? 3 : level;
    out() << "<h" << shown << '>';
    if (level != 3) out() << "<a class=\"self\" href=\"#" << anchor << "\">";
    write(text, 0, 1);
    if (level != 3) out() << "</a>";
    write(text, 1, text.size());
    out() << "</h" << shown << ">\n";
  }

  void paragraph(TextRuns const& text) override {
    out() << "<p>";
    write(text, 0, text.size());
    out() << "</p>\n";
  }

  void terms(std::vector<Term> const& terms) override {
    out() << "<dl>\n";
    for (Term const& term : terms) {
      out() << "<dt>" << escapedHtml(term.name) << "</dt>";
      for (TextRuns const& line : term.lines) {
        out() << "<dd>";
        write(line, 0, line.size());
        out() << "</dd>\n";
      }
    }
    out() << "</dl>\n";
  }

 private:
  void closeDownTo(std::size_t level) {
    while (!open_.empty() && open_.back().level >= level) {
      out() << open_.back().end;
      open_.pop_back();
    }
  }

  void write(TextRuns const& text, std::size_t from, std::size_t to) {
    for (std::size_t i = from; i < std::min(to, text.size()); ++i) {
      TextRun const& span = text[i];
      std::string const shown = escapedHtml(span.text);
      switch (span.kind) {
        case TextRun::Kind::Plain:
          out() << shown;
          break;
        case TextRun::Kind::Code:
          out() << "<code>" << shown << "</code>";
          break;
        case TextRun::Kind::Strong:
          out() << "<strong>" << shown << "</strong>";
          break;
        case TextRun::Kind::Mark:
          out() << "<mark>" << shown << "</mark>";
          break;
        case TextRun::Kind::Link:
          out() << "<a href=\"#" << span.target << "\">" << shown << "</a>";
          break;
      }
    }
  }

  struct Open {
    std::size_t level;
    char const* end;
  };
  std::vector<Open> open_;
};

// Markdown

std::string escapedMarkdown(std::string_view text) {
  std::string result;
  for (char const c : onOneLine(text)) {
    if (c == '<') {
      result += "&lt;";
    } else if (c == '>') {
      result += "&gt;";
    } else if (c == '&') {
      result += "&amp;";
    } else {
      if (std::string_view("\\`*_{}[]()#+-.!|~:").find(c) != std::string_view::npos) result += '\\';
      result += c;
    }
  }
  return result;
}

/// A code span is fenced by more backquotes than it has in a row.
std::string codeInMarkdown(std::string_view text) {
  std::string const shown = onOneLine(text);
  std::size_t longest = 0;
  for (std::size_t i = 0, run = 0; i < shown.size(); ++i) {
    run = shown[i] == '`' ? run + 1 : 0;
    longest = std::max(longest, run);
  }
  if (shown.empty()) return "*empty*";
  std::string const fence(longest + 1, '`');
  bool const needsBlank = shown.front() == '`' || shown.back() == '`';
  return fence + (needsBlank ? " " : "") + shown + (needsBlank ? " " : "") + fence;
}

class MarkdownWriter final : public ReferenceWriter {
 public:
  using ReferenceWriter::ReferenceWriter;

  void begin(std::string const& title, std::vector<ContentsEntry> const& contents) override {
    out() << "# " << escapedMarkdown(title) << "\n\n";
    for (ContentsEntry const& entry : contents) {
      out() << std::string(2 * entry.level, ' ') << "- [" << escapedMarkdown(entry.text) << "](#" << entry.anchor
            << ")\n";
    }
  }

  void end() override {}

  void heading(std::size_t level, std::string const& anchor, TextRuns const& text) override {
    out() << '\n';
    if (!anchor.empty()) out() << "<a id=\"" << anchor << "\"></a>\n\n";
    out() << std::string(level < 3 ? 2 : level, '#') << ' ';
    write(text);
    out() << '\n';
  }

  void paragraph(TextRuns const& text) override {
    out() << '\n';
    write(text);
    out() << '\n';
  }

  void terms(std::vector<Term> const& terms) override {
    out() << '\n';
    for (Term const& term : terms) {
      out() << "- " << escapedMarkdown(term.name) << ": ";
      for (std::size_t i = 0; i < term.lines.size(); ++i) {
        if (i > 0) out() << "; ";
        write(term.lines[i]);
      }
      out() << '\n';
    }
  }

 private:
  void write(TextRuns const& text) {
    for (TextRun const& span : text) {
      switch (span.kind) {
        case TextRun::Kind::Plain:
          out() << escapedMarkdown(span.text);
          break;
        case TextRun::Kind::Code:
          out() << codeInMarkdown(span.text);
          break;
        case TextRun::Kind::Strong:
          out() << "**" << escapedMarkdown(span.text) << "**";
          break;
        case TextRun::Kind::Mark:
          out() << '*' << escapedMarkdown(span.text) << '*';
          break;
        case TextRun::Kind::Link:
          out() << '[' << escapedMarkdown(span.text) << "](#" << span.target << ')';
          break;
      }
    }
  }
};

}  // namespace

std::unique_ptr<ReferenceWriter> makeReferenceWriter(std::ostream& out, ReferenceFormat format) {
  if (format == ReferenceFormat::Html) return std::make_unique<HtmlWriter>(out);
  return std::make_unique<MarkdownWriter>(out);
}

}  // namespace tarn::workbench
