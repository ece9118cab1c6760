// SPDX-License-Identifier: MIT
#include "shell/registry_script.h"

#include <algorithm>
#include <limits>

namespace zr
{
namespace
{

using Removal = RegistryKeyEntry::Removal;
using Root = RegistryBranch::Root;

// The registry itself allows 512 levels; no script of ours comes near this.
constexpr int kMaxDepth = 64;

struct RootName {
    std::wstring_view name;
    Root root;
};

constexpr RootName kRootNames[] = {
    {L"HKCR", Root::ClassesRoot},  {L"HKEY_CLASSES_ROOT", Root::ClassesRoot},
    {L"HKCU", Root::CurrentUser},  {L"HKEY_CURRENT_USER", Root::CurrentUser},
    {L"HKLM", Root::LocalMachine}, {L"HKEY_LOCAL_MACHINE", Root::LocalMachine},
};

constexpr wchar_t kQuote = L'\'';
constexpr wchar_t kReplacementMark = L'%';

bool isBlank(wchar_t c)
{
    return c == L' ' || c == L'\t' || c == L'\r' || c == L'\n';
}

wchar_t lower(wchar_t c)
{
    return c >= L'A' && c <= L'Z' ? static_cast<wchar_t>(c - L'A' + L'a') : c;
}

bool equalsInAnyCase(std::wstring_view left, std::wstring_view right)
{
    return std::equal(left.begin(), left.end(), right.begin(), right.end(),
                      [](wchar_t a, wchar_t b) { return lower(a) == lower(b); });
}

struct Token {
    std::wstring text;
    bool quoted = false;

    bool is(std::wstring_view keyword) const { return !quoted && equalsInAnyCase(text, keyword); }
};

// Splits the text into tokens and replaces the marks in them. A malformed token makes the reader fail for good; then,
// and at the end of the text, take() returns nullopt.
class TokenReader
{
public:
    TokenReader(std::wstring_view text, const RegistryReplacements& replacements)
        : m_text(text), m_replacements(replacements)
    {
        advance();
    }

    bool failed() const { return m_failed; }
    bool atEnd() const { return !m_current; }
    bool nextIs(std::wstring_view keyword) const { return m_current && m_current->is(keyword); }

    // Takes the next token when it is this keyword.
    bool accept(std::wstring_view keyword)
    {
        if (!nextIs(keyword))
            return false;
        advance();
        return true;
    }

    // Takes the next token, whatever it is.
    std::optional<Token> take()
    {
        auto token = std::move(m_current);
        advance();
        return token;
    }

private:
    void advance()
    {
        m_current.reset();
        while (m_at < m_text.size() && isBlank(m_text[m_at]))
            ++m_at;
        if (m_failed || m_at == m_text.size())
            return;
        Token token;
        token.quoted = m_text[m_at] == kQuote;
        const auto raw = token.quoted ? readQuoted() : readBare();
        if (raw && replaceMarks(*raw, token.text))
            m_current = std::move(token);
        else
            m_failed = true;
    }

    std::optional<std::wstring> readQuoted()
    {
        std::wstring raw;
        for (++m_at; m_at < m_text.size(); ++m_at) {
            if (m_text[m_at] == kQuote) {
                ++m_at;
                if (m_at == m_text.size() || m_text[m_at] != kQuote)
                    return raw;
            }
            raw += m_text[m_at];
        }
        return std::nullopt;
    }

    std::optional<std::wstring> readBare()
    {
        const auto begin = m_at;
        while (m_at < m_text.size() && !isBlank(m_text[m_at]))
            ++m_at;
        return std::wstring(m_text.substr(begin, m_at - begin));
    }

    bool replaceMarks(std::wstring_view raw, std::wstring& text) const
    {
        while (true) {
            const auto mark = raw.find(kReplacementMark);
            text += raw.substr(0, mark);
            if (mark == std::wstring_view::npos)
                return true;
            raw.remove_prefix(mark + 1);
            const auto end = raw.find(kReplacementMark);
            if (end == std::wstring_view::npos)
                return false;
            if (end == 0) {
                text += kReplacementMark;
            } else {
                const auto replacement = m_replacements.find(raw.substr(0, end));
                if (replacement == m_replacements.end())
                    return false;
                text += replacement->second;
            }
            raw.remove_prefix(end + 1);
        }
    }

    std::wstring_view m_text;
    const RegistryReplacements& m_replacements;
    std::size_t m_at = 0;
    std::optional<Token> m_current;
    bool m_failed = false;
};

class Parser
{
public:
    Parser(std::wstring_view text, const RegistryReplacements& replacements) : m_tokens(text, replacements) {}

    std::optional<std::vector<RegistryBranch>> parse()
    {
        std::vector<RegistryBranch> branches;
        while (!m_tokens.atEnd()) {
            RegistryBranch branch;
            // A root's block has the form of a key's block, but without values.
            RegistryKeyEntry root;
            if (!parseRoot(branch.root) || !parseBlock(root, 0) || !root.values.empty())
                return std::nullopt;
            branch.keys = std::move(root.subkeys);
            branches.push_back(std::move(branch));
        }
        if (m_tokens.failed())
            return std::nullopt;
        return branches;
    }

private:
    bool parseRoot(Root& root)
    {
        const auto token = m_tokens.take();
        const auto* const row = std::find_if(std::begin(kRootNames), std::end(kRootNames),
                                             [&](const RootName& name) { return token->is(name.name); });
        if (row == std::end(kRootNames))
            return false;
        root = row->root;
        return true;
    }

    bool parseBlock(RegistryKeyEntry& parent, int depth)
    {
        if (depth > kMaxDepth || !m_tokens.accept(L"{"))
            return false;
        while (!m_tokens.accept(L"}")) {
            if (m_tokens.atEnd() || !(m_tokens.accept(L"val") ? parseValue(parent) : parseKey(parent, depth)))
                return false;
        }
        return true;
    }

    bool parseValue(RegistryKeyEntry& parent)
    {
        RegistryValue value;
        if (!parseName(value.name) || !m_tokens.accept(L"=") || !parseData(value))
            return false;
        parent.values.push_back(std::move(value));
        return true;
    }

    bool parseKey(RegistryKeyEntry& parent, int depth)
    {
        RegistryKeyEntry key;
        if (m_tokens.accept(L"ForceRemove"))
            key.removal = Removal::WithEverything;
        else if (m_tokens.accept(L"NoRemove"))
            key.removal = Removal::Never;
        // A backslash would make keys of which only the last could be removed again.
        if (!parseName(key.name) || key.name.find(L'\\') != std::wstring::npos)
            return false;
        if (m_tokens.accept(L"=")) {
            RegistryValue value;
            if (!parseData(value))
                return false;
            key.values.push_back(std::move(value));
        }
        if (m_tokens.nextIs(L"{") && !parseBlock(key, depth + 1))
            return false;
        parent.subkeys.push_back(std::move(key));
        return true;
    }

    // Signs and keywords are not names unless quoted.
    bool parseName(std::wstring& name)
    {
        static constexpr std::wstring_view kReserved[] = {L"{",           L"}",        L"=",     L"val",
                                                          L"ForceRemove", L"NoRemove", L"Delete"};
        auto token = m_tokens.take();
        if (!token || token->text.empty() ||
            std::any_of(std::begin(kReserved), std::end(kReserved), [&](auto word) { return token->is(word); }))
            return false;
        name = std::move(token->text);
        return true;
    }

    bool parseData(RegistryValue& value)
    {
        const bool isText = m_tokens.accept(L"s");
        if (!isText && !m_tokens.accept(L"d"))
            return false;
        auto token = m_tokens.take();
        if (!token)
            return false;
        if (isText) {
            value.data = std::move(token->text);
            return true;
        }
        const auto number = parseNumber(token->text);
        if (number)
            value.data = *number;
        return number.has_value();
    }

    static std::optional<std::uint32_t> parseNumber(std::wstring_view digits)
    {
        std::uint64_t number = 0;
        for (const wchar_t digit : digits) {
            if (digit < L'0' || digit > L'9')
                return std::nullopt;
            number = number * 10 + static_cast<std::uint64_t>(digit - L'0');
            if (number > std::numeric_limits<std::uint32_t>::max())
                return std::nullopt;
        }
        if (digits.empty())
            return std::nullopt;
        return static_cast<std::uint32_t>(number);
    }

    TokenReader m_tokens;
};

} // namespace

std::optional<std::vector<RegistryBranch>> parseRegistryScript(std::wstring_view text,
                                                               const RegistryReplacements& replacements)
{
    return Parser(text, replacements).parse();
}

} // namespace zr
