// SPDX-License-Identifier: GPL-2.0-or-later
#include "locale.hpp"

#include <algorithm>
#include <string_view>

namespace veldra_tool {

namespace {

/// Those of two letters, and those of three that somebody may write about buildings in.
constexpr std::string_view languages =
    "aa ab ae af ak am an ar as av ay az ba be bg bh bi bm bn bo br bs ca ce ch co cr cs cu "
    "cv cy da de dv dz ee el en eo es et eu fa ff fi fj fo fr fy ga gd gl gn gu gv ha he hi "
    "ho hr ht hu hy hz ia id ie ig ii ik io is it iu ja jv ka kg ki kj kk kl km kn ko kr ks "
    "ku kv kw ky la lb lg li ln lo lt lu lv mg mh mi mk ml mn mr ms mt my na nb nd ne ng nl "
    "nn no nr nv ny oc oj om or os pa pi pl ps pt qu rm rn ro ru rw sa sc sd se sg si sk sl "
    "sm sn so sq sr ss st su sv sw ta te tg th ti tk tl tn to tr ts tt tw ty ug uk ur uz ve "
    "vi vo wa wo xh yi yo za zh zu ast bar ckb csb dsb fil frp frr fur gsw haw hsb kab ksh "
    "lad lij lld lmo mhr mwl nap nds pms rup sah scn sco smn sms szl tet vec wae";

constexpr std::string_view countries =
    "AD AE AF AG AI AL AM AO AQ AR AS AT AU AW AX AZ BA BB BD BE BF BG BH BI BJ BL BM BN BO "
    "BQ BR BS BT BV BW BY BZ CA CC CD CF CG CH CI CK CL CM CN CO CR CU CV CW CX CY CZ DE DJ "
    "DK DM DO DZ EC EE EG EH ER ES ET FI FJ FK FM FO FR GA GB GD GE GF GG GH GI GL GM GN GP "
    "GQ GR GS GT GU GW GY HK HM HN HR HT HU ID IE IL IM IN IO IQ IR IS IT JE JM JO JP KE KG "
    "KH KI KM KN KP KR KW KY KZ LA LB LC LI LK LR LS LT LU LV LY MA MC MD ME MF MG MH MK ML "
    "MM MN MO MP MQ MR MS MT MU MV MW MX MY MZ NA NC NE NF NG NI NL NO NP NR NU NZ OM PA PE "
    "PF PG PH PK PL PM PN PR PS PT PW PY QA RE RO RS RU RW SA SB SC SD SE SG SH SI SJ SK SL "
    "SM SN SO SR SS ST SV SX SY SZ TC TD TF TG TH TJ TK TL TM TN TO TR TT TV TW TZ UA UG UM "
    "US UY UZ VA VC VE VG VI VN VU WF WS XK YE YT ZA ZM ZW";

bool has_word(std::string_view words, std::string_view word) {
  for (std::size_t i = words.find(word); i != std::string_view::npos; i = words.find(word, i + 1)) {
    const std::size_t end = i + word.size();
    if ((i == 0 || words[i - 1] == ' ') && (end == words.size() || words[end] == ' ')) return true;
  }
  return false;
}

bool is_small(char c) { return c >= 'a' && c <= 'z'; }
bool is_capital(char c) { return c >= 'A' && c <= 'Z'; }
bool is_digit(char c) { return c >= '0' && c <= '9'; }

bool is_script(std::string_view text) {
  return text.size() == 4 && is_capital(text[0]) &&
         std::all_of(text.begin() + 1, text.end(), is_small);
}

bool is_country(std::string_view text) {
  if (text.size() == 3) return std::all_of(text.begin(), text.end(), is_digit);
  return text.size() == 2 && has_word(countries, text);
}

/// Takes the first part from a text, with what separates it from the next one.
std::string_view take_part(std::string_view& text) {
  const auto end = std::min(text.find_first_of("_-"), text.size());
  const auto part = text.substr(0, end);
  text.remove_prefix(std::min(end + 1, text.size()));
  return part;
}

}  // namespace

bool is_locale(const std::string& text) {
  if (text.empty() || text.back() == '_' || text.back() == '-') return false;
  std::string_view rest = text;
  const auto language = take_part(rest);
  if (language.find(' ') != std::string_view::npos || !has_word(languages, language)) return false;
  if (rest.empty()) return true;
  auto part = take_part(rest);
  if (is_script(part)) {
    if (rest.empty()) return true;
    part = take_part(rest);
  }
  return is_country(part) && rest.empty();
}

}  // namespace veldra_tool
