#include "storage/projectfolder.h"

#include "core/contentobjects.h"
#include "core/project.h"
#include "storage/atomicfilebatch.h"
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

// A file the write will commit, with what its record becomes once it is on disk.
struct PendingFile
{
    QString relativePath;
    QByteArray bytes;
    FileRecord record;
    QHash<QUuid, FileRecord> *records;
    QUuid id;
};

// Decides whether one item's file must be written: not when the record shows that the item,
// or the bytes it serialises to, did not change since they were last on disk.
template<typename Serialise>
std::optional<std::pair<QByteArray, QByteArray>> changedBytes(quint64 revision, FileRecord *record,
                                                              Serialise serialise)
{
    if (record && record->revision == revision)
        return std::nullopt;
    QByteArray bytes = jsonFileBytes(serialise());
    QByteArray digest = digestOf(bytes);
    if (record && record->digest == digest) {
        record->revision = revision;
        return std::nullopt;
    }
    return std::make_pair(std::move(bytes), std::move(digest));
}

// Collects the files of one folder ("objects" or "taxonomy") whose items changed. Items need
// id() and revision().
template<typename Item, typename Serialise>
void collectChangedItems(const QString &subfolder, const std::vector<const Item *> &items,
                         QHash<QUuid, FileRecord> &records, Serialise serialise,
                         std::vector<PendingFile> &pending)
{
    for (const Item *item : items) {
        const auto found = records.find(item->id());
        FileRecord *record = found != records.end() ? &*found : nullptr;
        auto changed = changedBytes(item->revision(), record, [&] { return serialise(*item); });
        if (!changed)
            continue;
        pending.push_back({subfolder + u'/' + fileNameOf(item->id()), std::move(changed->first),
                           FileRecord{item->revision(), std::move(changed->second)}, &records,
                           item->id()});
    }
}

// Removes the files of items that left the model. isPresent tells whether an id is still in it.
template<typename Item, typename IsPresent>
void sweepItems(const QString &folder, const QString &subfolder,
                const std::vector<const Item *> &items, QHash<QUuid, FileRecord> &records,
                bool complete, IsPresent isPresent, FolderWriteReport &report)
{
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
            return;
        for (auto it = records.begin(); it != records.end();) {
            // A file that cannot be removed keeps its record and is tried again next time.
            if (!isPresent(it.key()) && remove(fileNameOf(it.key())))
                it = records.erase(it);
            else
                ++it;
        }
        return;
    }

    QSet<QString> kept;
    kept.reserve(qsizetype(items.size()));
    for (const Item *item : items)
        kept.insert(fileNameOf(item->id()));
    for (const QString &name : storedFileNames(folder + u'/' + subfolder)) {
        if (!kept.contains(name))
            remove(name);
    }
}

// Commits the pending files in one batch and only then records them as on disk.
Result<void> commitPending(const QString &folder, std::vector<PendingFile> &pending,
                           FolderWriteReport &report)
{
    AtomicFileBatch batch;
    for (const PendingFile &file : pending) {
        if (const Result<void> staged = batch.stage(folder + u'/' + file.relativePath, file.bytes);
            !staged) {
            return staged;
        }
    }
    if (const Result<void> committed = batch.commit(); !committed)
        return committed;
    for (PendingFile &file : pending) {
        file.records->insert(file.id, std::move(file.record));
        report.written.insert(file.relativePath, std::move(file.bytes));
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
    if (!root.mkpath(taxonomyFolderName))
        return makeError(u"Cannot create taxonomy folder: %1"_s.arg(
            native(root.filePath(taxonomyFolderName))));

    // Object and category files go to disk together; the project file follows them, last.
    const core::CategoryTree &tree = project.categories();
    const std::vector<const core::ContentObject *> objects = project.objects();
    const std::vector<const core::Category *> categories = tree.all();
    std::vector<PendingFile> pending;
    collectChangedItems(objectsFolderName, objects, m_state->objects,
                        [](const core::ContentObject &object) { return objectToJson(object); },
                        pending);
    collectChangedItems(taxonomyFolderName, categories, m_state->categories,
                        [](const core::Category &category) { return categoryToJson(category); },
                        pending);
    if (const Result<void> committed = commitPending(folder, pending, report); !committed) {
        // Some files may have been replaced before the failure: start afresh next time.
        forget();
        return makeError(committed.error());
    }
    sweepItems(folder, objectsFolderName, objects, m_state->objects, m_state->complete,
               [&](const QUuid &id) { return project.contains(id); }, report);
    sweepItems(folder, taxonomyFolderName, categories, m_state->categories, m_state->complete,
               [&](const QUuid &id) { return tree.contains(id); }, report);

    FileRecord *settingsRecord = m_state->settings ? &*m_state->settings : nullptr;
    if (auto changed = changedBytes(project.settingsRevision(), settingsRecord,
                                    [&] { return projectSettingsToJson(project); })) {
        if (const Result<void> written = writeFileAtomically(folder + u'/' + projectFileName,
                                                             changed->first);
            !written) {
            return makeError(written.error());
        }
        report.written.insert(projectFileName, changed->first);
        m_state->settings = FileRecord{project.settingsRevision(), std::move(changed->second)};
    }

    m_state->complete = true;
    return report;
}

} // namespace fb::app
