#include "storage/projectfolder.h"

#include "core/contentobjects.h"
#include "core/project.h"
#include "storage/categorycodec.h"
#include "storage/jsonfile.h"
#include "storage/objectcodec.h"
#include "storage/projectsettingscodec.h"

#include <QCryptographicHash>
#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QSet>

#include <optional>

using namespace Qt::StringLiterals;

namespace fb::app {

namespace {

const QString projectFileName = u"project.json"_s;
const QString objectsFolderName = u"objects"_s;
const QString taxonomyFolderName = u"taxonomy"_s;

QString native(const QString &path)
{
    return QDir::toNativeSeparators(path);
}

QString fileNameOf(const QUuid &id)
{
    return core::idText(id) + u".json"_s;
}

// The stored files of one folder, by name, in the order the reader walks them. Listed without
// name filters or sorting by QDir, which cost more than reading a project of thousands of files.
QStringList storedFileNames(const QString &folder)
{
    QStringList names;
    QDirIterator it(folder, QDir::Files);
    while (it.hasNext()) {
        it.next();
        if (it.fileName().endsWith(u".json"_s))
            names.append(it.fileName());
    }
    std::sort(names.begin(), names.end());
    return names;
}

// Reads one stored file, telling the observer what was read.
Result<QJsonObject> readStoredFile(const QString &folder, const QString &relativePath,
                                   const FileReadObserver &observer)
{
    QByteArray bytes;
    Result<QJsonObject> json = readJsonFile(folder + u'/' + relativePath, bytes);
    if (json && observer)
        observer(relativePath, bytes);
    return json;
}

Result<void> readObjects(const QString &root, core::Project &project,
                         const FileReadObserver &observer)
{
    const QString folder = root + u'/' + objectsFolderName;
    for (const QString &name : storedFileNames(folder)) {
        const QString path = folder + u'/' + name;
        const Result<QJsonObject> json =
            readStoredFile(root, objectsFolderName + u'/' + name, observer);
        if (!json)
            return makeError(json.error());
        Result<std::unique_ptr<core::ContentObject>> object = objectFromJson(*json, path);
        if (!object)
            return makeError(object.error());
        const QUuid id = (*object)->id();
        if (project.contains(id)) {
            return makeError(
                u"Duplicate object id %1 in %2"_s.arg(core::idText(id), native(path)));
        }
        project.addObject(std::move(object).value());
    }
    return {};
}

Result<void> readCategories(const QString &root, core::CategoryTree &tree,
                            const FileReadObserver &observer)
{
    const QString folder = root + u'/' + taxonomyFolderName;
    for (const QString &name : storedFileNames(folder)) {
        const QString path = folder + u'/' + name;
        const Result<QJsonObject> json =
            readStoredFile(root, taxonomyFolderName + u'/' + name, observer);
        if (!json)
            return makeError(json.error());
        Result<std::unique_ptr<core::Category>> category = categoryFromJson(*json, path);
        if (!category)
            return makeError(category.error());
        // Two files claiming one category cannot both be kept.
        if (tree.contains((*category)->id()))
            return makeError(u"Malformed category file: %1"_s.arg(native(path)));
        tree.add(std::move(category).value());
    }
    return {};
}

} // namespace

Result<std::unique_ptr<core::Project>> readProjectFolder(const QString &folder,
                                                         const FileReadObserver &observer)
{
    const Result<QJsonObject> settings = readStoredFile(folder, projectFileName, observer);
    if (!settings)
        return makeError(settings.error());

    auto project = std::make_unique<core::Project>();
    readProjectSettings(*settings, *project);
    if (const Result<void> read = readObjects(folder, *project, observer); !read)
        return makeError(read.error());
    if (const Result<void> read = readCategories(folder, project->categories(), observer); !read) {
        return makeError(read.error());
    }
    return project;
}

// What the writer knows of one file on disk: the revision of the item it holds, and the SHA-1
// of the bytes last written (empty when the file was read rather than written).
struct FileRecord
{
    quint64 revision = 0;
    QByteArray digest;
};

struct ProjectFolderWriter::State
{
    // The folder the records describe; empty until a write names it.
    QString folder;
    // Whether the records name every object and category file on disk, so removals need no
    // listing of the folders.
    bool complete = false;
    QHash<QUuid, FileRecord> objects;
    QHash<QUuid, FileRecord> categories;
    std::optional<FileRecord> settings;
};

namespace {

QByteArray digestOf(const QByteArray &bytes)
{
    return QCryptographicHash::hash(bytes, QCryptographicHash::Sha1);
}

// Writes one file unless the record shows that its item, or its bytes, did not change.
template<typename Serialise>
Result<void> writeIfChanged(const QString &folder, const QString &relativePath, quint64 revision,
                            FileRecord &record, bool recorded, Serialise serialise,
                            FolderWriteReport &report)
{
    if (recorded && record.revision == revision)
        return {};
    const QByteArray bytes = jsonFileBytes(serialise());
    QByteArray digest = digestOf(bytes);
    if (!(recorded && record.digest == digest)) {
        const Result<void> written = writeFileAtomically(folder + u'/' + relativePath, bytes);
        if (!written)
            return written;
        report.written.insert(relativePath, bytes);
    }
    record = FileRecord{revision, std::move(digest)};
    return {};
}

// Writes the files of one folder ("objects" or "taxonomy") and removes those of items that left
// the model. Items need id() and revision(); isPresent tells whether an id is still in the model.
template<typename Item, typename Serialise, typename IsPresent>
Result<void> writeItems(const QString &folder, const QString &subfolder,
                        const std::vector<const Item *> &items, QHash<QUuid, FileRecord> &records,
                        bool complete, Serialise serialise, IsPresent isPresent,
                        FolderWriteReport &report)
{
    for (const Item *item : items) {
        const auto found = records.find(item->id());
        const bool recorded = found != records.end();
        FileRecord fresh;
        FileRecord &record = recorded ? *found : fresh;
        const Result<void> written =
            writeIfChanged(folder, subfolder + u'/' + fileNameOf(item->id()), item->revision(),
                           record, recorded, [&] { return serialise(*item); }, report);
        if (!written)
            return written;
        if (!recorded)
            records.insert(item->id(), fresh);
    }

    const QString directory = folder + u'/' + subfolder;
    const auto remove = [&](const QString &name) {
        const QString relativePath = subfolder + u'/' + name;
        QFile file(folder + u'/' + relativePath);
        if (!file.exists())
            return true;
        if (!file.remove())
            return false;
        report.removed.append(relativePath);
        return true;
    };

    if (complete) {
        // Every item now has a record, so surplus records are exactly the items that left.
        if (records.size() == qsizetype(items.size()))
            return {};
        for (auto it = records.begin(); it != records.end();) {
            // A file that cannot be removed keeps its record and is tried again next time.
            if (!isPresent(it.key()) && remove(fileNameOf(it.key())))
                it = records.erase(it);
            else
                ++it;
        }
        return {};
    }

    QSet<QString> kept;
    kept.reserve(qsizetype(items.size()));
    for (const Item *item : items)
        kept.insert(fileNameOf(item->id()));
    for (const QString &name : storedFileNames(directory)) {
        if (!kept.contains(name))
            remove(name);
    }
    return {};
}

} // namespace

ProjectFolderWriter::ProjectFolderWriter()
    : m_state(std::make_unique<State>())
{}

ProjectFolderWriter::~ProjectFolderWriter() = default;

void ProjectFolderWriter::assumeOnDisk(const core::Project &project)
{
    forget();
    for (const core::ContentObject *object : project.objects())
        m_state->objects.insert(object->id(), FileRecord{object->revision(), {}});
    for (const core::Category *category : project.categories().all())
        m_state->categories.insert(category->id(), FileRecord{category->revision(), {}});
    m_state->settings = FileRecord{project.settingsRevision(), {}};
    m_state->complete = true;
}

void ProjectFolderWriter::forget()
{
    *m_state = State();
}

Result<FolderWriteReport> ProjectFolderWriter::write(const QString &folder,
                                                     const core::Project &project)
{
    // The records describe one folder; writing anywhere else starts from nothing.
    if (!m_state->folder.isEmpty() && m_state->folder != folder)
        forget();
    m_state->folder = folder;

    FolderWriteReport report;
    const QDir root(folder);
    if (!QDir().mkpath(folder))
        return makeError(u"Cannot create project folder: %1"_s.arg(native(folder)));

    if (!root.mkpath(objectsFolderName))
        return makeError(u"Cannot create project folder: %1"_s.arg(
            native(root.filePath(objectsFolderName))));
    const Result<void> objects = writeItems(
        folder, objectsFolderName, project.objects(), m_state->objects, m_state->complete,
        [](const core::ContentObject &object) { return objectToJson(object); },
        [&](const QUuid &id) { return project.contains(id); }, report);
    if (!objects)
        return makeError(objects.error());

    if (!root.mkpath(taxonomyFolderName))
        return makeError(u"Cannot create taxonomy folder: %1"_s.arg(
            native(root.filePath(taxonomyFolderName))));
    const core::CategoryTree &tree = project.categories();
    const Result<void> categories = writeItems(
        folder, taxonomyFolderName, tree.all(), m_state->categories, m_state->complete,
        [](const core::Category &category) { return categoryToJson(category); },
        [&](const QUuid &id) { return tree.contains(id); }, report);
    if (!categories)
        return makeError(categories.error());

    FileRecord settings = m_state->settings.value_or(FileRecord());
    const Result<void> written = writeIfChanged(
        folder, projectFileName, project.settingsRevision(), settings,
        m_state->settings.has_value(), [&] { return projectSettingsToJson(project); }, report);
    if (!written)
        return makeError(written.error());
    m_state->settings = settings;

    m_state->complete = true;
    return report;
}

} // namespace fb::app
