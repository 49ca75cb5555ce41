/*
 * The file under a database: opened and looked at before LMDB sees it, so that what is wrong with it gets its own
 * words. Used by database alone.
 */
#ifndef OSTORE_STORE_FILE_H
#define OSTORE_STORE_FILE_H

#include <sys/types.h>

#include <filesystem>
#include <string>

namespace ostore {

class store_file
{
  public:
    /* Opens a regular file, or with `create` makes one where there is none. Throws store_error. */
    store_file(const std::filesystem::path &path, bool create);

    /* A file in memory that has no name in any folder: nothing is left behind however the process ends. */
    store_file();

    store_file(const store_file &) = delete;
    store_file &operator=(const store_file &) = delete;
    ~store_file();

    /* The path to hand to LMDB; holds while this object lives. */
    const std::string &path() const { return path_; }
    /* What people call the file. */
    const std::string &name() const { return name_; }

    /* Bytes in the file. */
    std::size_t size() const;
    /* Makes the file `size` bytes long, zeros in what is new. */
    void resize(std::size_t size);
    /*
     * Gives LMDB's lock file, which lies beside the file, `size` bytes that the disk really has: LMDB maps the file,
     * and on a full disk a process that writes to a hole in a map is killed. For before LMDB opens the file.
     */
    void reserve_lock_file(std::size_t size) const;
    /* Brings the file's entry in its folder to the disk. */
    void sync_folder() const;

  private:
    void claim();

    std::string name_;
    std::string path_;
    int descriptor_ = -1;
    dev_t device_ = 0;
    ino_t inode_ = 0;
};

} // namespace ostore

#endif
