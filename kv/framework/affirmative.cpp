#include "kv/framework/language.h"

#include <array>
#include <cwchar>
#include <cwctype>

namespace kv {

namespace {

constexpr int kWordCharacters = 256;
constexpr int kWordsPerLanguage = 8;
constexpr int kLastOfEveryLanguage = 16;

// Yes, enabled, positive, on and true. Quirk: some words do not have their column's meaning ("disattivato", "av"). The
// empty words at the end of a row match an empty text.
constexpr const wchar_t* kWords[kLanguageCount][kWordsPerLanguage] = {
    {L"yes", L"enabled", L"positive", L"on", L"true", L"", L"", L""},
    {L"ja", L"aktiviert", L"positiv", L"ein", L"wahr", L"", L"", L""},
    {L"qui", L"activé", L"positif", L"activé", L"vrai", L"", L"", L""},
    {L"sí", L"activado", L"positivo", L"encendido", L"cierto", L"", L"", L""},
    {L"sì", L"disattivato", L"positivo", L"esecuzione", L"vero", L"", L"", L""},
    {L"ja", L"ingeschakeld", L"positief", L"aan", L"waar", L"", L"", L""},
    {L"sim", L"ativado", L"positivo", L"executa", L"verdade", L"", L"", L""},
    {L"tak", L"włączona", L"pozytywne", L"na", L"prawdziwy", L"", L"", L""},
    {L"да", L"позволило", L"позитивный", L"запускает", L"верно", L"", L"", L""},
    {L"Ναι", L"ενεργοποιηθεί", L"θετικό", L"καταδίωξε", L"ΑΛΗΘΕΙΑ", L"", L"", L""},
    {L"да", L"активирано", L"положително", L"вкл", L"истина", L"", L"", L""},
    {L"हाँ", L"सक्षम", L"सकारात्मक", L"नहीं", L"सच्चा", L"", L"", L""},
    {L"はい", L"有効になって", L"正", L"〜の上に", L"真", L"", L"", L""},
    {L"是", L"启用", L"同意", L"开", L"正確的", L"", L"", L""},
    {L"예", L"활성화", L"긍정적인", L"켜기", L"정말인", L"", L"", L""},
    {L"نعم", L"مكن", L"ايجابي", L"على", L"صحيح", L"", L"", L""},
    {L"ja", L"aktiverad", L"positiv", L"on", L"sant", L"", L"", L""},
    {L"ja", L"aktivert", L"positiv", L"av", L"sann", L"", L"", L""},
    {L"kyllä", L"käytössä", L"positiivinen", L"päälle", L"tosi", L"", L"", L""},
    {L"yes", L"enabled", L"positive", L"on", L"true", L"", L"", L""},
    {L"yes", L"enabled", L"positive", L"on", L"true", L"", L"", L""},
    {L"yes", L"enabled", L"positive", L"on", L"true", L"", L"", L""},
    {L"yes", L"enabled", L"positive", L"on", L"true", L"", L"", L""},
    {L"sí", L"activado", L"positivo", L"encendido", L"cierto", L"", L"", L""},
};

struct FoldedWord {
  std::array<wchar_t, kWordCharacters + 1> text;
};

// Returns the first word in lower case; reads at most kWordCharacters.
FoldedWord FoldFirstWord(const wchar_t* text) {
  FoldedWord word{};
  for (int i = 0; i < kWordCharacters && text[i] > L' '; ++i) {
    word.text[i] = static_cast<wchar_t>(std::towlower(text[i]));
  }
  return word;
}

bool HasWord(int language, const FoldedWord& word) {
  for (const wchar_t* candidate : kWords[language]) {
    if (lstrcmpW(FoldFirstWord(candidate).text.data(), word.text.data()) == 0) return true;
  }
  return false;
}

}  // namespace

BOOL IsAffirmative(int language, const wchar_t* text) {
  if (IsBadStringPtrW(text, kWordCharacters)) return FALSE;
  const FoldedWord word = FoldFirstWord(text);
  for (const wchar_t* sign : {L"1", L"+", L"yes"}) {
    if (std::wcsstr(word.text.data(), sign)) return TRUE;
  }
  const bool every = language == kEveryLanguage;
  if (!every && (language < 0 || language >= kLanguageCount)) return FALSE;
  const int first = every ? 0 : language;
  const int last = every ? kLastOfEveryLanguage : language;
  for (int row = first; row <= last; ++row) {
    if (HasWord(row, word)) return TRUE;
  }
  return FALSE;
}

}  // namespace kv
