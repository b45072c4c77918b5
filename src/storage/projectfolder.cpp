#include "storage/projectfolder.h"

#include "core/contentobjects.h"
#include "core/documenttree.h"
#include "core/project.h"
#include "storage/categorycodec.h"
#include "storage/filestatus.h"
#include "storage/jsonfile.h"
#include "storage/objectcodec.h"
#include "storage/projectsettingscodec.h"
#include "storage/storagemessages.h"
#include "storage/storedform.h"

#include <QDir>
#include <QDirIterator>
#include <QJsonDocument>

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

QString defaultPathOf(const QString &subfolder, const QUuid &id)
{
    return subfolder + u'/' + core::idText(id) + u".json"_s;
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

// One stored file read whole and parsed, with what the caller records of it.
struct ReadFile
{
    QJsonObject json;
    StoredFile stored;
};

// Reads one stored file; nothing when it was removed since the folder was listed (another
// program deleting it meanwhile).
Result<std::optional<ReadFile>> readListedFile(const QString &folder, const QString &relativePath,
                                               const FileReadObserver &observer)
{
    const QString path = folder + u'/' + relativePath;
    const Result<std::optional<FileContents>> contents = readFileContents(path);
    if (!contents)
        return makeError(u"Cannot read file: %1"_s.arg(native(path)));
    if (!*contents)
        return std::optional<ReadFile>();
    const QByteArray &bytes = (*contents)->bytes;
    const QJsonDocument document = QJsonDocument::fromJson(bytes);
    if (!document.isObject())
        return makeError(u"Invalid JSON in file: %1"_s.arg(native(path)));
    if (observer)
        observer(relativePath, bytes);
    return std::optional(
        ReadFile{document.object(), StoredFile{relativePath, contentDigest(bytes)}});
}

Result<ReadFile> readStoredFile(const QString &folder, const QString &relativePath,
                                const FileReadObserver &observer)
{
    Result<std::optional<ReadFile>> read = readListedFile(folder, relativePath, observer);
    if (!read)
        return makeError(read.error());
    if (!*read)
        return makeError(u"Cannot read file: %1"_s.arg(native(folder + u'/' + relativePath)));
    return std::move(**read);
}

Result<void> readObjects(const QString &root, core::Project &project,
                         const FileReadObserver &observer, ProjectFiles &files)
{
    const QString folder = root + u'/' + objectsFolderName;
    for (const QString &name : storedFileNames(folder)) {
        const QString path = folder + u'/' + name;
        Result<std::optional<ReadFile>> listed = readListedFile(root,
                                                                objectsFolderName + u'/' + name,
                                                                observer);
        if (!listed)
            return makeError(listed.error());
        if (!*listed)
            continue;
        ReadFile *read = &**listed;
        Result<std::unique_ptr<core::ContentObject>> object = objectFromJson(read->json, path);
        if (!object)
            return makeError(object.error());
        const QUuid id = (*object)->id();
        if (project.contains(id)) {
            return makeError(u"Duplicate object id %1 in %2"_s.arg(core::idText(id), native(path)));
        }
        project.addObject(std::move(object).value());
        files.objects.insert(id, std::move(read->stored));
    }
    return {};
}

Result<void> readCategories(const QString &root, core::CategoryTree &tree,
                            const FileReadObserver &observer, ProjectFiles &files)
{
    const QString folder = root + u'/' + taxonomyFolderName;
    for (const QString &name : storedFileNames(folder)) {
        const QString path = folder + u'/' + name;
        Result<std::optional<ReadFile>> listed = readListedFile(root,
                                                                taxonomyFolderName + u'/' + name,
                                                                observer);
        if (!listed)
            return makeError(listed.error());
        if (!*listed)
            continue;
        ReadFile *read = &**listed;
        Result<std::unique_ptr<core::Category>> category = categoryFromJson(read->json, path);
        if (!category)
            return makeError(category.error());
        // Two files claiming one category cannot both be kept.
        if (tree.contains((*category)->id()))
            return makeError(u"Malformed category file: %1"_s.arg(native(path)));
        files.categories.insert((*category)->id(), std::move(read->stored));
        tree.add(std::move(category).value());
    }
    return {};
}

} // namespace

Result<std::unique_ptr<core::Project>> readProjectFolder(const QString &folder,
                                                         const FileReadObserver &observer,
                                                         ProjectFiles *files)
{
    ProjectFiles found;
    Result<ReadFile> settings = readStoredFile(folder, projectFileName, observer);
    if (!settings)
        return makeError(settings.error());

    auto project = std::make_unique<core::Project>();
    readProjectSettings(settings->json, *project);
    found.settings = std::move(settings->stored);
    if (const Result<void> read = readObjects(folder, *project, observer, found); !read)
        return makeError(read.error());
    if (const Result<void> read = readCategories(folder, project->categories(), observer, found);
        !read) {
        return makeError(read.error());
    }
    core::repairDocumentParentLoops(*project);
    if (files)
        *files = std::move(found);
    return project;
}

FolderWriteReport FolderWritePlan::report() const
{
    FolderWriteReport report;
    for (const Step &step : steps) {
        if (step.bytes)
            report.written.insert(step.relativePath, *step.bytes);
        else
            report.removed.append(step.relativePath);
    }
    return report;
}

// What the writer knows of one item's file: where it is, the revision of the item it holds,
// and a digest of the bytes last read or written there.
struct FileRecord
{
    QString relativePath;
    quint64 revision = 0;
    quint64 digest = 0;
    // Written by this writer, so every value in it is one the model understood.
    bool writtenHere = false;
};

struct ProjectFolderWriter::State
{
    QHash<QUuid, FileRecord> objects;
    QHash<QUuid, FileRecord> categories;
    std::optional<FileRecord> settings;

    FileRecord *record(FolderWritePlan::ItemKind kind, const QUuid &id)
    {
        switch (kind) {
        case FolderWritePlan::ItemKind::Object: {
            const auto found = objects.find(id);
            return found == objects.end() ? nullptr : &*found;
        }
        case FolderWritePlan::ItemKind::Category: {
            const auto found = categories.find(id);
            return found == categories.end() ? nullptr : &*found;
        }
        case FolderWritePlan::ItemKind::Settings:
            return settings ? &*settings : nullptr;
        }
        return nullptr;
    }

    void store(FolderWritePlan::ItemKind kind, const QUuid &id, FileRecord record)
    {
        switch (kind) {
        case FolderWritePlan::ItemKind::Object:
            objects.insert(id, std::move(record));
            return;
        case FolderWritePlan::ItemKind::Category:
            categories.insert(id, std::move(record));
            return;
        case FolderWritePlan::ItemKind::Settings:
            settings = std::move(record);
            return;
        }
    }

    void forget(FolderWritePlan::ItemKind kind, const QUuid &id)
    {
        switch (kind) {
        case FolderWritePlan::ItemKind::Object:
            objects.remove(id);
            return;
        case FolderWritePlan::ItemKind::Category:
            categories.remove(id);
            return;
        case FolderWritePlan::ItemKind::Settings:
            settings.reset();
            return;
        }
    }
};

namespace {

using ItemKind = FolderWritePlan::ItemKind;

// One item the plan looks at: how to serialise it now, and how the model understands the
// stored form of it found on disk.
struct PlannedItem
{
    ItemKind kind;
    QUuid id;
    quint64 revision;
    QString defaultPath;
    std::function<QJsonObject()> serialise;
    std::function<std::optional<QJsonObject>(const QJsonObject &)> understand;
};

Result<void> planItem(const QString &folder, const PlannedItem &item, FileRecord *record,
                      FolderWritePlan &plan)
{
    if (record && record->revision == item.revision)
        return {};
    QJsonObject json = item.serialise();
    const QString relativePath = record ? record->relativePath : item.defaultPath;
    const QString path = folder + u'/' + relativePath;
    const Result<std::optional<FileContents>> onDisk = readFileContents(path);
    if (!onDisk)
        return makeError(onDisk.error());

    TargetExpectation expected;
    if (record) {
        if (!*onDisk)
            return makeError(removedOnDiskMessage(path));
        const QByteArray &stored = (*onDisk)->bytes;
        if (contentDigest(stored) != record->digest)
            return makeError(changedOnDiskMessage(path));
        if (!record->writtenHere)
            json = keepWhatWasNotUnderstood(json, stored, item.understand);
        expected = {(*onDisk)->status, journalDigest(stored)};
    } else if (*onDisk) {
        return makeError(createdOnDiskMessage(path));
    }

    QByteArray bytes = jsonFileBytes(json);
    if (record && bytes == (*onDisk)->bytes) {
        // The change left the stored form as it was.
        record->revision = item.revision;
        return {};
    }
    plan.steps.append({item.kind, item.id, item.revision, relativePath, std::move(bytes), expected});
    return {};
}

// Plans the removal of the files of items that left the model. A file another program
// changed since is not removed: the whole write is refused.
template<typename IsPresent>
Result<void> planRemovals(const QString &folder, ItemKind kind, QHash<QUuid, FileRecord> &records,
                          qsizetype presentCount, IsPresent isPresent, FolderWritePlan &plan)
{
    // Every present item has a record by now, so no surplus record means nothing left.
    if (records.size() == presentCount)
        return {};
    for (auto it = records.begin(); it != records.end();) {
        if (isPresent(it.key())) {
            ++it;
            continue;
        }
        const QString path = folder + u'/' + it->relativePath;
        const Result<std::optional<FileContents>> onDisk = readFileContents(path);
        if (!onDisk)
            return makeError(onDisk.error());
        if (!*onDisk) {
            // Already gone: nothing to do and nothing to remember.
            it = records.erase(it);
            continue;
        }
        if (contentDigest((*onDisk)->bytes) != it->digest)
            return makeError(changedOnDiskMessage(path));
        plan.steps.append({kind, it.key(), 0, it->relativePath, std::nullopt,
                           TargetExpectation{(*onDisk)->status, journalDigest((*onDisk)->bytes)}});
        ++it;
    }
    return {};
}

} // namespace

ProjectFolderWriter::ProjectFolderWriter()
    : m_state(std::make_unique<State>())
{}

ProjectFolderWriter::~ProjectFolderWriter() = default;

void ProjectFolderWriter::assumeOnDisk(const core::Project &project, const ProjectFiles &files)
{
    *m_state = State();
    const auto recordOf = [](const StoredFile *stored, const QString &defaultPath,
                             quint64 revision) {
        return stored ? FileRecord{stored->relativePath, revision, stored->digest, false}
                      : FileRecord{defaultPath, revision, 0, false};
    };
    for (const core::ContentObject *object : project.objects()) {
        const auto stored = files.objects.constFind(object->id());
        m_state->objects.insert(object->id(),
                                recordOf(stored == files.objects.constEnd() ? nullptr : &*stored,
                                         defaultPathOf(objectsFolderName, object->id()),
                                         object->revision()));
    }
    for (const core::Category *category : project.categories().all()) {
        const auto stored = files.categories.constFind(category->id());
        m_state->categories.insert(category->id(),
                                   recordOf(stored == files.categories.constEnd() ? nullptr
                                                                                  : &*stored,
                                            defaultPathOf(taxonomyFolderName, category->id()),
                                            category->revision()));
    }
    m_state->settings = recordOf(files.settings ? &*files.settings : nullptr, projectFileName,
                                 project.settingsRevision());
}

Result<FolderWritePlan> ProjectFolderWriter::plan(const QString &folder,
                                                  const core::Project &project)
{
    FolderWritePlan plan;
    // Object and category files go to disk together; the project file follows them, last.
    // Only items whose revision the records do not already hold are looked at any closer: a
    // save of one change among thousands of objects costs one comparison per object.
    const auto isOnDisk = [this](ItemKind kind, const QUuid &id, quint64 revision) {
        const FileRecord *record = m_state->record(kind, id);
        return record && record->revision == revision;
    };
    for (const core::ContentObject *object : project.objects()) {
        if (isOnDisk(ItemKind::Object, object->id(), object->revision()))
            continue;
        const PlannedItem item{ItemKind::Object,
                               object->id(),
                               object->revision(),
                               defaultPathOf(objectsFolderName, object->id()),
                               [object] { return objectToJson(*object); },
                               [](const QJsonObject &stored) -> std::optional<QJsonObject> {
                                   const auto read = objectFromJson(stored, QString());
                                   return read ? std::optional(objectToJson(**read)) : std::nullopt;
                               }};
        if (const Result<void> planned = planItem(folder, item,
                                                  m_state->record(ItemKind::Object, object->id()),
                                                  plan);
            !planned) {
            return makeError(planned.error());
        }
    }
    const core::CategoryTree &tree = project.categories();
    for (const core::Category *category : tree.all()) {
        if (isOnDisk(ItemKind::Category, category->id(), category->revision()))
            continue;
        const PlannedItem item{ItemKind::Category,
                               category->id(),
                               category->revision(),
                               defaultPathOf(taxonomyFolderName, category->id()),
                               [category] { return categoryToJson(*category); },
                               [](const QJsonObject &stored) -> std::optional<QJsonObject> {
                                   const auto read = categoryFromJson(stored, QString());
                                   return read ? std::optional(categoryToJson(**read))
                                               : std::nullopt;
                               }};
        if (const Result<void> planned
            = planItem(folder, item, m_state->record(ItemKind::Category, category->id()), plan);
            !planned) {
            return makeError(planned.error());
        }
    }
    if (const Result<void> removals = planRemovals(
            folder, ItemKind::Object, m_state->objects, project.objectCount(),
            [&](const QUuid &id) { return project.contains(id); }, plan);
        !removals) {
        return makeError(removals.error());
    }
    if (const Result<void> removals = planRemovals(
            folder, ItemKind::Category, m_state->categories, tree.count(),
            [&](const QUuid &id) { return tree.contains(id); }, plan);
        !removals) {
        return makeError(removals.error());
    }
    const PlannedItem settings{ItemKind::Settings,
                               QUuid(),
                               project.settingsRevision(),
                               projectFileName,
                               [&project] { return projectSettingsToJson(project); },
                               [](const QJsonObject &stored) -> std::optional<QJsonObject> {
                                   core::Project read;
                                   readProjectSettings(stored, read);
                                   return projectSettingsToJson(read);
                               }};
    if (const Result<void> planned = planItem(folder, settings,
                                              m_state->record(ItemKind::Settings, QUuid()), plan);
        !planned) {
        return makeError(planned.error());
    }
    return plan;
}

SaveOutcome ProjectFolderWriter::commit(const QString &folder, const FolderWritePlan &plan,
                                        bool journalled, FolderWriteReport *done)
{
    if (plan.isEmpty())
        return SaveOutcome::saved();
    const QDir root(folder);
    if (!QDir().mkpath(folder))
        return SaveOutcome::failed(u"Cannot create project folder: %1"_s.arg(native(folder)));
    if (!root.mkpath(objectsFolderName)) {
        return SaveOutcome::failed(
            u"Cannot create project folder: %1"_s.arg(native(root.filePath(objectsFolderName))));
    }
    if (!root.mkpath(taxonomyFolderName)) {
        return SaveOutcome::failed(
            u"Cannot create taxonomy folder: %1"_s.arg(native(root.filePath(taxonomyFolderName))));
    }

    AtomicFileBatch batch;
    for (const FolderWritePlan::Step &step : plan.steps) {
        const QString path = folder + u'/' + step.relativePath;
        if (!step.bytes) {
            batch.stageRemoval(path, step.expected);
            continue;
        }
        if (const Result<void> staged = batch.stage(path, *step.bytes, step.expected); !staged)
            return SaveOutcome::failed(staged.error());
    }
    SaveOutcome outcome = batch.commit(journalled ? folder : QString());
    // What reached the disk is recorded even when the batch stopped part way, so the records
    // keep describing the folder exactly.
    for (qsizetype i = 0; i < batch.completedCount(); ++i) {
        const FolderWritePlan::Step &step = plan.steps.at(i);
        if (step.bytes) {
            m_state->store(step.kind, step.id,
                           FileRecord{step.relativePath, step.revision, contentDigest(*step.bytes),
                                      true});
            if (done)
                done->written.insert(step.relativePath, *step.bytes);
        } else {
            m_state->forget(step.kind, step.id);
            if (done)
                done->removed.append(step.relativePath);
        }
    }
    return outcome;
}

SaveOutcome ProjectFolderWriter::write(const QString &folder, const core::Project &project,
                                       FolderWriteReport *done)
{
    const Result<FolderWritePlan> planned = plan(folder, project);
    if (!planned)
        return SaveOutcome::refused(planned.error());
    return commit(folder, *planned, true, done);
}

} // namespace fb::app
