// Fuzzes the readers of the project's stored files: one input is the bytes of a file, read as
// an object file, a category file and the project settings alike. Whatever a reader accepts
// must write back in a stored form that reads again to the very same stored form.

#include "core/category.h"
#include "core/contentobject.h"
#include "core/project.h"
#include "fuzzcheck.h"
#include "storage/categorycodec.h"
#include "storage/objectcodec.h"
#include "storage/projectsettingscodec.h"

#include <QJsonDocument>

#include <cstdint>

using namespace Qt::StringLiterals;

using namespace fb;
using namespace fb::app;

namespace {

const QString filePath = u"objects/fuzz.json"_s;

void readObject(const QJsonObject &json)
{
    const Result<std::unique_ptr<core::ContentObject>> object = objectFromJson(json, filePath);
    if (!object)
        return;
    const QJsonObject written = objectToJson(**object);
    const Result<std::unique_ptr<core::ContentObject>> again = objectFromJson(written, filePath);
    FB_FUZZ_CHECK(again.hasValue());
    FB_FUZZ_CHECK(objectToJson(**again) == written);
}

void readCategory(const QJsonObject &json)
{
    const Result<std::unique_ptr<core::Category>> category = categoryFromJson(json, filePath);
    if (!category)
        return;
    const QJsonObject written = categoryToJson(**category);
    const Result<std::unique_ptr<core::Category>> again = categoryFromJson(written, filePath);
    FB_FUZZ_CHECK(again.hasValue());
    FB_FUZZ_CHECK(categoryToJson(**again) == written);
}

void readSettings(const QJsonObject &json)
{
    core::Project project;
    readProjectSettings(json, project);
    const QJsonObject written = projectSettingsToJson(project);
    core::Project again;
    readProjectSettings(written, again);
    FB_FUZZ_CHECK(projectSettingsToJson(again) == written);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QJsonDocument document = QJsonDocument::fromJson(
        QByteArray::fromRawData(reinterpret_cast<const char *>(data), qsizetype(size)));
    if (!document.isObject())
        return 0;
    const QJsonObject json = document.object();
    readObject(json);
    readCategory(json);
    readSettings(json);
    return 0;
}
