#include "library/data_dir_setting.h"

#include "library/companion.h"
#include "library/json_reader.h"
#include "library/system_text.h"

std::wstring ReadDataDirSetting(FileTree& tree) {
    const std::wstring roaming = tree.RoamingAppData();
    if (roaming.empty()) return {};
    const auto bytes = tree.ReadFile(roaming + L"\\" + kCompanionSettingsFile);
    if (!bytes) return {};
    JsonValue root;
    if (!JsonValue::Parse(*bytes, root) || root.type != JsonValue::Object) return {};
    std::wstring folder = WideFromUtf8(root.GetString(kCompanionDataDirKey, ""));
    // "C:\" keeps its backslash; "C:\Photos\\" loses both.
    while (folder.size() > 3 && (folder.back() == L'\\' || folder.back() == L'/'))
        folder.pop_back();
    return folder;
}
