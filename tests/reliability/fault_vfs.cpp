// SPDX-License-Identifier: GPL-2.0-or-later
#include "reliability/fault_vfs.hpp"

#include "support/temporary.hpp"

#include <sqlite3.h>
#include <unistd.h>

#include <map>
#include <new>
#include <random>
#include <stdexcept>
#include <vector>

namespace veldra_tests {

namespace {

const char* const vfs_name = "faultvfs";

// What a disk holds of a file: its last synced state, and what was done to it since.
struct Change {
  enum class Kind { Write, Truncate, Delete };
  Kind kind;
  std::size_t offset;  // of a truncation: the size
  std::string bytes;
};

struct Disk {
  bool exists = false;
  std::string synced;
  std::vector<Change> changes;
};

enum class Call { Read, Growth, Write, ChangeOfDisk, Unlock, Other };

struct State {
  bool armed = false;
  bool fired = false;
  FaultVfs::Fault fault{};
  unsigned calls = 0;
  std::map<std::string, Disk> disks;
};

State& state() {
  static State state;
  return state;
}

bool losing_power() {
  return state().armed && state().fault.trouble == FaultVfs::Trouble::PowerLoss;
}

bool concerns(FaultVfs::Trouble trouble, Call call) {
  switch (trouble) {
    case FaultVfs::Trouble::Error:
      return call != Call::Unlock;
    case FaultVfs::Trouble::KeptLock:
      return call == Call::Unlock;
    case FaultVfs::Trouble::DiskFull:
      return call == Call::Growth;
    case FaultVfs::Trouble::ShortWrite:
      return call == Call::Growth || call == Call::Write;
    case FaultVfs::Trouble::PowerLoss:
      return call == Call::Growth || call == Call::Write || call == Call::ChangeOfDisk;
  }
  return false;
}

// Whether this call is to fail.
bool fails(Call call) {
  State& now = state();
  if (!now.armed) return false;
  if (losing_power() && now.fired) return true;
  if (!concerns(now.fault.trouble, call)) return false;
  ++now.calls;
  const bool persistent = now.fault.repetition == FaultVfs::Repetition::Persistent;
  const bool due = persistent ? now.calls >= now.fault.at : now.calls == now.fault.at;
  now.fired = now.fired || due;
  return due;
}

Disk& disk_of(const std::string& path) {
  const auto known = state().disks.find(path);
  if (known != state().disks.end()) return known->second;
  Disk& disk = state().disks[path];
  disk.exists = file_exists(path);
  if (disk.exists) disk.synced = read_file(path);
  return disk;
}

// Changes are remembered before they fail: the one during which the power goes may still be made.
void remember(const char* path, Change change) {
  if (!losing_power() || state().fired || path == nullptr) return;
  disk_of(path).changes.push_back(std::move(change));
}

void synced(const char* path) {
  if (!losing_power() || path == nullptr) return;
  Disk& disk = disk_of(path);
  disk.exists = true;
  disk.synced = read_file(path);
  disk.changes.clear();
}

void deleted_and_synced(const char* path) {
  if (!losing_power()) return;
  disk_of(path) = Disk();
}

// An open file: ours, with the one of the VFS below behind it. SQLite keeps the path; it is null
// for a file without a name. Nothing is allocated here but while power is being lost.
struct File {
  sqlite3_file base;
  const char* path;

  sqlite3_file* real() { return reinterpret_cast<sqlite3_file*>(this + 1); }
};

File& ours(sqlite3_file* file) { return *reinterpret_cast<File*>(file); }

sqlite3_vfs* below() {
  static sqlite3_vfs* const vfs = sqlite3_vfs_find(nullptr);
  return vfs;
}

int close_file(sqlite3_file* file) {
  return ours(file).real()->pMethods->xClose(ours(file).real());
}

int read_bytes(sqlite3_file* file, void* bytes, int size, sqlite3_int64 offset) {
  if (fails(Call::Read)) return SQLITE_IOERR_READ;
  return ours(file).real()->pMethods->xRead(ours(file).real(), bytes, size, offset);
}

bool grows(File& file, int size, sqlite3_int64 offset) {
  sqlite3_int64 former = 0;
  file.real()->pMethods->xFileSize(file.real(), &former);
  return offset + size > former;
}

int failed_write(File& file, const void* bytes, int size, sqlite3_int64 offset) {
  switch (state().fault.trouble) {
    case FaultVfs::Trouble::DiskFull:
      return SQLITE_FULL;
    case FaultVfs::Trouble::ShortWrite:
      file.real()->pMethods->xWrite(file.real(), bytes, size / 2, offset);
      return SQLITE_IOERR_WRITE;
    default:
      return SQLITE_IOERR_WRITE;
  }
}

int write_bytes(sqlite3_file* file, const void* bytes, int size, sqlite3_int64 offset) {
  File& own = ours(file);
  if (losing_power()) {
    remember(own.path,
             {Change::Kind::Write, static_cast<std::size_t>(offset),
              std::string(static_cast<const char*>(bytes), static_cast<std::size_t>(size))});
  }
  if (fails(grows(own, size, offset) ? Call::Growth : Call::Write)) {
    return failed_write(own, bytes, size, offset);
  }
  return own.real()->pMethods->xWrite(own.real(), bytes, size, offset);
}

int truncate_file(sqlite3_file* file, sqlite3_int64 size) {
  File& own = ours(file);
  remember(own.path, {Change::Kind::Truncate, static_cast<std::size_t>(size), {}});
  if (fails(Call::ChangeOfDisk)) return SQLITE_IOERR_TRUNCATE;
  return own.real()->pMethods->xTruncate(own.real(), size);
}

int sync_file(sqlite3_file* file, int) {
  if (fails(Call::ChangeOfDisk)) return SQLITE_IOERR_FSYNC;
  synced(ours(file).path);
  return SQLITE_OK;
}

int size_of_file(sqlite3_file* file, sqlite3_int64* size) {
  if (fails(Call::Other)) return SQLITE_IOERR_FSTAT;
  return ours(file).real()->pMethods->xFileSize(ours(file).real(), size);
}

int lock_file(sqlite3_file* file, int level) {
  if (fails(Call::Other)) return SQLITE_IOERR_LOCK;
  return ours(file).real()->pMethods->xLock(ours(file).real(), level);
}

// But for the trouble that is about it, a lock is always given back: what would hold it for ever is
// the fault, not the library.
int unlock_file(sqlite3_file* file, int level) {
  // Giving back what keeps readers away, and giving back everything, fail in two ways.
  if (fails(Call::Unlock)) {
    return level == SQLITE_LOCK_SHARED ? SQLITE_IOERR_RDLOCK : SQLITE_IOERR_UNLOCK;
  }
  return ours(file).real()->pMethods->xUnlock(ours(file).real(), level);
}

int check_reserved_lock(sqlite3_file* file, int* reserved) {
  if (fails(Call::Other)) return SQLITE_IOERR_CHECKRESERVEDLOCK;
  return ours(file).real()->pMethods->xCheckReservedLock(ours(file).real(), reserved);
}

int control_file(sqlite3_file* file, int operation, void* argument) {
  return ours(file).real()->pMethods->xFileControl(ours(file).real(), operation, argument);
}

int sector_size(sqlite3_file* file) {
  return ours(file).real()->pMethods->xSectorSize(ours(file).real());
}

int device_characteristics(sqlite3_file* file) {
  return ours(file).real()->pMethods->xDeviceCharacteristics(ours(file).real());
}

// Version 1: without shared memory and mapped files, so that every access is a call.
const sqlite3_io_methods methods = {1,
                                    close_file,
                                    read_bytes,
                                    write_bytes,
                                    truncate_file,
                                    sync_file,
                                    size_of_file,
                                    lock_file,
                                    unlock_file,
                                    check_reserved_lock,
                                    control_file,
                                    sector_size,
                                    device_characteristics,
                                    nullptr,
                                    nullptr,
                                    nullptr,
                                    nullptr,
                                    nullptr,
                                    nullptr};

int open_file(sqlite3_vfs*, const char* name, sqlite3_file* file, int flags, int* out_flags) {
  file->pMethods = nullptr;
  if (losing_power() && name != nullptr) disk_of(name);
  if (fails(Call::Other)) return SQLITE_CANTOPEN;
  File& own = ours(file);
  const int result = below()->xOpen(below(), name, own.real(), flags, out_flags);
  if (result != SQLITE_OK) return result;
  own.path = name;
  file->pMethods = &methods;
  return SQLITE_OK;
}

int delete_file(sqlite3_vfs*, const char* name, int sync_folder) {
  remember(name, {Change::Kind::Delete, 0, {}});
  if (fails(Call::ChangeOfDisk)) return SQLITE_IOERR_DELETE;
  const int result = below()->xDelete(below(), name, 0);
  if (result == SQLITE_OK && sync_folder != 0) deleted_and_synced(name);
  return result;
}

int access_file(sqlite3_vfs*, const char* name, int flags, int* result) {
  if (fails(Call::Other)) return SQLITE_IOERR_ACCESS;
  return below()->xAccess(below(), name, flags, result);
}

sqlite3_vfs* make_vfs() {
  static sqlite3_vfs vfs = *below();
  vfs.pNext = nullptr;
  vfs.zName = vfs_name;
  vfs.szOsFile = static_cast<int>(sizeof(File)) + below()->szOsFile;
  vfs.xOpen = open_file;
  vfs.xDelete = delete_file;
  vfs.xAccess = access_file;
  return &vfs;
}

void register_once() {
  static const int result = sqlite3_vfs_register(make_vfs(), 0);
  if (result != SQLITE_OK) throw std::runtime_error("cannot register the VFS");
}

void apply(const Change& change, Disk& disk) {
  switch (change.kind) {
    case Change::Kind::Write: {
      const std::size_t end = change.offset + change.bytes.size();
      if (disk.synced.size() < end) disk.synced.resize(end);
      disk.synced.replace(change.offset, change.bytes.size(), change.bytes);
      disk.exists = true;
      break;
    }
    case Change::Kind::Truncate:
      disk.synced.resize(change.offset);
      break;
    case Change::Kind::Delete:
      disk = Disk();
      break;
  }
}

void apply_what_was_made(Disk& disk, std::mt19937& random) {
  const std::vector<Change> changes = disk.changes;
  for (Change change : changes) {
    const auto fate = random() % 4;
    // While a deletion is lost the name means the old file, and what was done to a new one of that
    // name is not to be seen.
    if (fate == 0 && change.kind == Change::Kind::Delete) return;
    if (fate == 0) continue;
    if (fate == 1 && !change.bytes.empty()) change.bytes.resize(random() % change.bytes.size());
    apply(change, disk);
  }
}

}  // namespace

std::string FaultVfs::name_of(const std::string& path) {
  register_once();
  return std::string(vfs_name) + "://" + path;
}

void FaultVfs::arm(const Fault& fault) {
  state() = State();
  state().fault = fault;
  state().armed = true;
}

void FaultVfs::disarm() { state().armed = false; }

bool FaultVfs::fired() { return state().fired; }
unsigned FaultVfs::calls() { return state().calls; }

void FaultVfs::leave_what_reached_the_disk(unsigned seed) {
  std::mt19937 random(seed);
  for (const auto& entry : state().disks) {
    Disk disk = entry.second;
    apply_what_was_made(disk, random);
    if (disk.exists) {
      write_file(entry.first, disk.synced);
    } else {
      ::unlink(entry.first.c_str());
    }
  }
}

}  // namespace veldra_tests
