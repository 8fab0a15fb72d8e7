#include "search_key.h"

#include <unicode/normalizer2.h>
#include <unicode/uchar.h>
#include <unicode/unistr.h>

#include <algorithm>
#include <array>
#include <stdexcept>

#include "icu_strings.h"

namespace lumenquest::adapters {

namespace {

/// Letters that no decomposition turns into plain ones, after case folding.
struct PlainLetter {
  UChar32 letter;
  const char16_t* plain;
};

constexpr std::array<PlainLetter, 15> kPlainLetters{{
    {U'ø', u"o"},
    {U'ł', u"l"},
    {U'đ', u"d"},
    {U'ð', u"d"},
    {U'þ', u"th"},
    {U'æ', u"ae"},
    {U'œ', u"oe"},
    {U'ı', u"i"},
    {U'ħ', u"h"},
    {U'ŧ', u"t"},
    {U'ŋ', u"n"},
    {U'ə', u"e"},
    {U'ɖ', u"d"},
    {U'ĸ', u"k"},
    {U'ƒ', u"f"},
}};

/// A spelling without the letter, as in addresses and timetables.
struct Spelling {
  const char16_t* letter;
  const char16_t* plain;
};

constexpr std::array<Spelling, 10> kSpellings{{
    {u"ä", u"ae"},
    {u"ö", u"oe"},
    {u"ü", u"ue"},
    {u"ø", u"oe"},
    {u"å", u"aa"},
    {u"Ä", u"Ae"},
    {u"Ö", u"Oe"},
    {u"Ü", u"Ue"},
    {u"Ø", u"Oe"},
    {u"Å", u"Aa"},
}};

constexpr std::array<UChar32, 5> kApostrophes{U'\'', U'’', U'‘', U'ʼ', U'ʻ'};

const icu::Normalizer2& Folding() {
  UErrorCode status = U_ZERO_ERROR;
  const icu::Normalizer2* folding = icu::Normalizer2::getNFKCCasefoldInstance(status);
  if (U_FAILURE(status)) throw std::runtime_error("ICU's normalisation data are missing");
  return *folding;
}

const icu::Normalizer2& Decomposition() {
  UErrorCode status = U_ZERO_ERROR;
  const icu::Normalizer2* decomposition = icu::Normalizer2::getNFDInstance(status);
  if (U_FAILURE(status)) throw std::runtime_error("ICU's normalisation data are missing");
  return *decomposition;
}

icu::UnicodeString Normalized(const icu::Normalizer2& form, const icu::UnicodeString& text) {
  UErrorCode status = U_ZERO_ERROR;
  icu::UnicodeString result = form.normalize(text, status);
  return U_FAILURE(status) ? text : result;
}

std::vector<std::string> Words(const icu::UnicodeString& text) {
  const icu::UnicodeString plain = Normalized(Decomposition(), Normalized(Folding(), text));
  std::vector<std::string> words;
  icu::UnicodeString word;
  const auto finish = [&] {
    if (!word.isEmpty()) words.push_back(ToUtf8(word));
    word.remove();
  };
  for (std::int32_t i = 0; i < plain.length(); i = plain.moveIndex32(i, 1)) {
    const UChar32 c = plain.char32At(i);
    if (u_charType(c) == U_NON_SPACING_MARK || u_charType(c) == U_ENCLOSING_MARK) continue;
    const bool isPart =
        c != 0xFFFD && (u_isalnum(c) || u_charType(c) == U_COMBINING_SPACING_MARK ||
                        u_charType(c) == U_LETTER_NUMBER || u_charType(c) == U_OTHER_NUMBER);
    if (!isPart) {
      finish();
      continue;
    }
    const auto* special =
        std::find_if(kPlainLetters.begin(), kPlainLetters.end(),
                     [c](const PlainLetter& letter) { return letter.letter == c; });
    if (special == kPlainLetters.end()) {
      word.append(c);
    } else {
      word.append(special->plain, -1);
    }
  }
  finish();
  return words;
}

}  // namespace

std::vector<std::string> searchWords(std::string_view text) {
  return Words(icu::UnicodeString::fromUTF8(
      icu::StringPiece(text.data(), static_cast<std::int32_t>(text.size()))));
}

std::string joinedWords(const std::vector<std::string>& words, std::size_t begin, std::size_t end) {
  std::string joined;
  for (std::size_t i = begin; i < std::min(end, words.size()); ++i) {
    if (i > begin) joined += ' ';
    joined += words[i];
  }
  return joined;
}

std::vector<std::string> searchKeys(const std::string& name) {
  std::vector<std::string> keys;
  const auto add = [&keys](const icu::UnicodeString& text) {
    std::string key = joinedWords(Words(text));
    if (!key.empty() && std::find(keys.begin(), keys.end(), key) == keys.end()) {
      keys.push_back(std::move(key));
    }
  };
  const icu::UnicodeString text = FromUtf8(name);
  add(text);
  icu::UnicodeString spelt = text;
  for (const Spelling& spelling : kSpellings) {
    spelt.findAndReplace(spelling.letter, spelling.plain);
  }
  add(spelt);
  icu::UnicodeString joined = text;
  for (const UChar32 apostrophe : kApostrophes) {
    joined.findAndReplace(icu::UnicodeString(apostrophe), icu::UnicodeString());
  }
  add(joined);
  return keys;
}

}  // namespace lumenquest::adapters
