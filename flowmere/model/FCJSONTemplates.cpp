#include "flowmere/model/FCJSONTemplates.h"

wchar_t const* FCVariableJSONTemplate =
    LR"json({'"'value'"': '"'$Value'"','"'fileType'"': '"'$Type'"','"'files'"': [$VarFiles],'"'dataType'"': '"'$DataType'"','"'linkPath'"': '"'$LinkPath'"','"'ioType'"': '"'$Status'"','"'nature'"': '"'$Nature'"','"'id'"': '"'$VarID'"','"'name'"': '"'$Name'"'})json";

wchar_t const* FCArgumentJSONTemplate = LR"json({'"'index'"': '"'$Index'"','"'value'"': '"'$Value'"'})json";

wchar_t const* FCPatternJSONTemplate =
    LR"json({'"'name'"': '"'$Name'"',   '"'regEx'"': '"'$RegEx'"',   '"'suggestion'"': '"'$Suggestion'"',   '"'fileExtn'"': '"'$File'"'})json";
