#pragma once

namespace qro_common {

// The Windows language identifier of the user-interface locale of the
// process environment (created on first use): LangCode::GetLangCode of
// language + "-" + country, for example 0x0412 for ("ko", "KR"); 0 when the
// tag is not a known one.
unsigned short getUILangCode();

}  // namespace qro_common
