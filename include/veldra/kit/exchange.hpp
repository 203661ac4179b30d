// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_KIT_EXCHANGE_HPP
#define VELDRA_KIT_EXCHANGE_HPP

#include <veldra/kit/clash.hpp>
#include <veldra/kit/error.hpp>
#include <veldra/kit/export.hpp>
#include <veldra/kit/progress.hpp>
#include <veldra/kit/value.hpp>
#include <veldra/library.hpp>

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace veldra::kit {

class SourceContent;

/// What is wrong in a source, and where.
struct VELDRA_KIT_EXPORT SourceProblem {
  std::string file;      ///< the name of the source as it was given, which need not be UTF-8
  unsigned line = 0;     ///< counted from 1; 0 for the source as a whole
  std::string object;    ///< the name that the object has in the source; empty if it is about none
  std::string sentence;  ///< what is wrong; it calls the object by its class and name
  bool doubt = false;  ///< the object has come in all the same: a number is doubtful, or something
                       ///< is missing that the format demands

  /// Place and sentence: "'walls.idf', line 12: Material 'Brick': the thickness is missing". In
  /// UTF-8, and quotes names as they are.
  ///
  /// Throws: `std::bad_alloc`.
  std::string text() const;
};

/// A source that cannot be read, or that cannot be read together with others. `what()` is the text
/// of the problem.
class VELDRA_KIT_EXPORT SourceError : public Error {
 public:
  /// Makes the error of a problem.
  explicit SourceError(const SourceProblem& problem);

  /// Copies the error.
  SourceError(const SourceError& other) = default;

  /// Destroys the error.
  ~SourceError() override;

  /// The problem in its parts.
  const SourceProblem& problem() const noexcept { return problem_; }

 private:
  SourceProblem problem_;
};

/// Sources that contradict each other, each contradiction as a problem. It is the error of the
/// first one.
class VELDRA_KIT_EXPORT SourceClashes : public SourceError {
 public:
  /// Makes the error of problems, of which there is one at least.
  explicit SourceClashes(std::vector<SourceProblem> problems);

  /// Copies the error.
  SourceClashes(const SourceClashes& other) = default;

  /// Destroys the error.
  ~SourceClashes() override;

  /// All of them, in the order in which the sources were read.
  const std::vector<SourceProblem>& problems() const noexcept { return problems_; }

 private:
  std::vector<SourceProblem> problems_;
};

/// A format of files that can be read or written.
struct Format {
  std::string name;                  ///< for people, such as "epJSON"
  std::vector<std::string> endings;  ///< usual ones of file names, in lower case without the point
  bool readable = false;             ///< whether there is a reader (`Source`)
  bool writable = false;             ///< whether there is a writer
};

/// The formats that there are.
///
/// Throws: `std::bad_alloc`.
VELDRA_KIT_EXPORT const std::vector<Format>& formats();

/// The format that somebody means by its name or one of its endings, in whatever case; of several
/// with an ending it is the first. Null if there is none. Lives as long as the program.
///
/// Throws: `std::bad_alloc`.
VELDRA_KIT_EXPORT const Format* find_format(const std::string& name);

/// What a file holds, as far as that can be read without knowing the library and other files. A
/// plain value; copies share what was read.
///
/// Thread rule: any number of threads may use an object, as nothing changes it.
class VELDRA_KIT_EXPORT Source {
 public:
  /// Reads the content of a file, which tells the format by itself; `file` is for messages, and for
  /// tags.
  ///
  /// Throws:
  /// - `SourceError`: the content is malformed, or of a format without a reader. The sentence says
  ///   what it seems to be.
  /// - `std::bad_alloc`.
  Source(std::string file, std::string content);

  /// The name of the file as it was given.
  const std::string& file() const noexcept { return file_; }

  /// The format of the content. Lives as long as the program.
  const Format& format() const noexcept { return *format_; }

  /// Whether there is anything that a library has a place for.
  bool has_objects() const;

  /// The unit of the lengths, if the source is of a library and says its unit.
  ///
  /// Throws `SourceError`: there is no such unit.
  std::optional<Unit> unit() const;

  /// Whether it is a table, which says what is to become of the objects of a library
  /// (`read_tables`).
  bool is_table() const noexcept;

 private:
  friend class SourceReading;

  std::string file_;
  const Format* format_;
  std::shared_ptr<SourceContent> content_;
};

/// A value of a source that a library has no place for.
struct NotKept {
  std::string object_class;  ///< the class of the object, as the format calls it
  std::string field;         ///< the field, by the format's own name
  std::string object;        ///< the name of the object
  unsigned line = 0;         ///< where the object begins
  std::string value;         ///< the value as a text
};

/// How many values of one field of one class were not kept.
struct FieldNotKept {
  std::string object_class;  ///< the class, as the format calls it
  std::string field;         ///< the field, likewise
  std::size_t count = 0;     ///< how many values
};

/// What becomes of an object whose name another object of the sources has.
enum class Repetition : int {
  Equal = 0,     ///< they are equal: the first stands for both
  Used = 1,      ///< they differ: the first stands for both (`OnClash::Use`)
  Overwrote = 2  ///< they differ: the first has got its values (`OnClash::Overwrite`)
};

/// An object that is not in the library by itself, as another one stands for it.
struct RepeatedObject {
  ObjectKey object;                     ///< the one in the library
  std::string name;                     ///< the name in the source
  unsigned line = 0;                    ///< where it begins
  Repetition what = Repetition::Equal;  ///< why
};

/// What was found in one source.
struct SourceReport {
  std::string file;                         ///< the name as it was given
  std::string format;                       ///< the name of the format
  std::map<std::string, unsigned> read;     ///< how many objects, by class
  std::map<std::string, unsigned> skipped;  ///< how many objects of classes that are not read
  std::vector<NotKept> not_kept;            ///< values of objects that were read
  std::vector<RepeatedObject> repeated;     ///< objects for which others stand
  std::vector<String> tags;                 ///< which its materials and compositions got from here
  unsigned layers = 0;                      ///< of all compositions
  unsigned layers_without_thickness = 0;    ///< how many of these have the thickness 0 or none
  unsigned references_not_found = 0;        ///< layers whose material is in no source
  std::vector<SourceProblem> problems;      ///< objects with problems are left out, unless that is
                                            ///< a doubt
};

/// The values of a source that were not kept, counted by class and field.
///
/// Throws: `std::bad_alloc`.
VELDRA_KIT_EXPORT std::vector<FieldNotKept> fields_not_kept(const SourceReport& report);

/// Where an object comes from.
struct SourceObject {
  std::size_t source = 0;     ///< the index of the source
  unsigned line = 0;          ///< where it begins there
  std::string name;           ///< the name that it has there
  bool ignores_case = false;  ///< names of the format compare without regard to case
  bool renamed = false;       ///< it has another name, as an object of another source has this one
};

/// What several sources hold together.
struct Sources {
  /// All objects, in a library in memory that has nothing else.
  std::shared_ptr<Library> library;

  /// What was found, in the order of the sources.
  std::vector<SourceReport> reports;

  /// Where each material and composition of the library comes from.
  std::map<ObjectKey, SourceObject> origins;

  /// The locale that the first source gives that has one; else empty.
  String locale;

  /// The region, likewise.
  String region;

  /// The material types of sources that list all of their library; none if no source does.
  std::optional<std::set<String>> types;

  /// Of tables: which stored object each object of the library is another state of. A plan is made
  /// with these (`PlanRules::states_of`).
  std::map<ObjectKey, unsigned> states_of;
};

/// How sources are read together.
struct SourceRules {
  Unit unit = Unit::Millimetres;     ///< the unit of the library
  OnClash on_clash = OnClash::Fail;  ///< what is done about objects of two sources that differ

  /// Tags for each material and composition. Without any, those of formats that are no library's
  /// get the name of their file.
  std::vector<std::string> tags;

  /// Whether values that a library has no place for become custom values. The property has the name
  /// of the class and, behind a point, of the field, such as "WindowMaterial:Blind.slat_width".
  bool keep_unknown = false;

  /// Is called for each material and composition that is in the library now.
  Progress progress;
};

/// Reads sources as one: a composition may be of materials of another source. Objects that have the
/// same values (`differences`) are one, with the tags of all.
///
/// Throws:
/// - `SourceError`: a source is malformed, or a table.
/// - `SourceClashes`: two sources differ about an object though they must not, or two materials
///   have one code. All of these are told.
/// - `Error`: a tag is not UTF-8.
/// - a database error (`Library`), and what `progress` throws.
VELDRA_KIT_EXPORT Sources read_together(const std::vector<Source>& sources,
                                        const SourceRules& rules);

/// The same of sources that nobody needs any more, which takes half the memory: what is read is let
/// go of as it is taken over. `sources` is empty then, also after a failure.
VELDRA_KIT_EXPORT Sources read_together(std::vector<Source>&& sources, const SourceRules& rules);

/// How tables are read.
struct TableRules {
  char separator = '\0';  ///< between cells; by default found in each table
  char decimal = '\0';    ///< in numbers: a point or a comma; by default found likewise

  /// Is called for each row.
  Progress progress;

  /// Between cells of a table whose first line does not tell it: it has none at all, or several as
  /// often.
  char usual_separator = ',';
};

/// Reads what tables say of the objects of a library: each row is an object, found by its id, else
/// by its code, else by its name; a row of which none is found is a new object. An empty cell
/// clears a field, and a column that is missing leaves it. In the library of the result the objects
/// are as the tables want them, beside what they refer to.
///
/// - Ids that a table has from another library count for nothing.
/// - A row with a cell that cannot be read is left out, and is among the problems.
/// - Hold a `Transaction` of a library that others may change meanwhile.
///
/// Throws:
/// - `SourceError`: a source is no table, or a heading is of no field.
/// - a database error (`Library`), and what `progress` throws.
VELDRA_KIT_EXPORT Sources read_tables(const std::vector<Source>& sources,
                                      const std::shared_ptr<const Library>& library,
                                      const TableRules& rules = {});

/// Takes the parts of a text, one after the other; of a format that is no text, the bytes.
using TextSink = std::function<void(std::string_view part)>;

/// The library that objects belong to which are written from another one, such as a part of it in
/// memory.
struct WholeLibrary {
  String guid;                        ///< its GUID
  std::map<ObjectKey, unsigned> ids;  ///< the ids that the objects of the part have there
};

/// How a library is written.
struct WriteRules {
  /// Which table of a format that has several: "materials", "compositions", or "layers" of
  /// compositions.
  std::string table = "materials";

  char separator = ',';  ///< between the cells of a table
  char decimal = '.';    ///< between the digits of numbers in a table: a point or a comma

  /// Is called for each object that is written.
  Progress progress;

  /// The library of which the one that is written is a part; null for none. Formats that hold ids,
  /// or marks made from them (GlobalIds), have those of the whole then, so that an object keeps
  /// them whatever is written beside it.
  const WholeLibrary* part_of = nullptr;
};

/// What became of the objects of a library that was written.
struct WriteReport {
  std::map<std::string, std::size_t> written;  ///< how many objects, by class of the format
  std::vector<FieldNotKept> not_written;  ///< values that the format has no place for, by kind and
                                          ///< field of the library
  std::vector<FieldNotKept> missing;      ///< values that the format demands and the objects do not
                                          ///< have, by class and field of the format
  std::vector<std::string> problems;      ///< sentences about objects that are written otherwise
                                          ///< than they are, or not at all

  /// Whether the text says all that the library does.
  bool is_whole() const noexcept {
    return not_written.empty() && missing.empty() && problems.empty();
  }
};

/// Writes a library in a format.
///
/// - What is written is the same for the same library, and of a format that is read reads back to
///   the same, but for what the report tells.
/// - Only a part of the objects is in memory at a time, besides their names.
/// - Hold a `Snapshot` of a library that others may change meanwhile.
///
/// Throws:
/// - `Error`: the format has no writer, or no such table.
/// - `std::out_of_range`: an object has gone meanwhile.
/// - a database error (`Library`), and what `sink` and `progress` throw.
VELDRA_KIT_EXPORT WriteReport write(const Library& library, const Format& format,
                                    const TextSink& sink, const WriteRules& rules = {});

/// Writes objects of a library and those to which they refer, as a library that holds nothing else.
/// Their ids, and the marks that are made from them, are those of the library itself; `part_of` of
/// the rules counts for nothing.
///
/// - Keys of no objects are skipped.
/// - The objects are in memory meanwhile. Their assets are not written, and are told.
///
/// Throws: as `write` of a library.
VELDRA_KIT_EXPORT WriteReport write(const Library& library, const std::set<ObjectKey>& keys,
                                    const Format& format, const TextSink& sink,
                                    const WriteRules& rules = {});

/// Writes all that a library holds as JSON, in a form that `Source` reads: names in place of ids,
/// and no members for what is as in a new object. Objects stand in the order of their names; the
/// GUID is not written, as it belongs to one file. Characters that can steer a terminal stand as
/// escapes.
///
/// - Only a part of the objects is in memory at a time, besides their names.
/// - Hold a `Snapshot` of a library that others may change meanwhile.
///
/// Throws:
/// - `std::out_of_range`: an object has gone meanwhile.
/// - a database error (`Library`), and what `sink` and `progress` throw.
VELDRA_KIT_EXPORT void write_json(const Library& library, const TextSink& sink,
                                  const Progress& progress = {});

/// The value of a field as it stands in that JSON, in one line; "null" for nothing.
///
/// Throws: `std::bad_alloc`, and `utf8::invalid_utf16` for a text that is malformed.
VELDRA_KIT_EXPORT std::string json_of(const Value& value);

/// An object as it stands in that JSON, in one line.
///
/// Throws: as `Field::get`.
VELDRA_KIT_EXPORT std::string json_of(const Material& material);

/// The same of a composition.
///
/// Throws: as `Field::get`.
VELDRA_KIT_EXPORT std::string json_of(const Composition& composition);

/// The same of a custom property.
///
/// Throws: as `Field::get`.
VELDRA_KIT_EXPORT std::string json_of(const CustomProperty& property);

}  // namespace veldra::kit

#endif
