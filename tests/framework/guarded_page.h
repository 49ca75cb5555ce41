/* Memory whose end is followed by memory that faults. */
#ifndef TESTS_FRAMEWORK_GUARDED_PAGE_H
#define TESTS_FRAMEWORK_GUARDED_PAGE_H

#include <sys/mman.h>
#include <unistd.h>

#include <cstdlib>
#include <cstring>

class guarded_page
{
  public:
    guarded_page()
    {
        if (base_ == MAP_FAILED || mprotect(base_ + size_, size_, PROT_NONE) != 0)
            std::abort();
    }
    guarded_page(const guarded_page &) = delete;
    guarded_page &operator=(const guarded_page &) = delete;
    ~guarded_page() { munmap(base_, 2 * size_); }

    char *end() { return base_ + size_; }

    /* The last `size` bytes, filled with a pattern without terminator. */
    char *last(std::size_t size) { return static_cast<char *>(std::memset(end() - size, '#', size)); }

  private:
    std::size_t size_ = static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
    char *base_ =
        static_cast<char *>(mmap(nullptr, 2 * size_, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0));
};

#endif
