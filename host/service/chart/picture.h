/* A spectrum as an SVG picture. */
#ifndef SERVICE_CHART_PICTURE_H
#define SERVICE_CHART_PICTURE_H

#include "service/chart/spectrum.h"

#include <filesystem>
#include <stdexcept>
#include <string>

namespace service::chart {

/* A picture's file cannot be written. One line: file, cause. */
class picture_error : public std::runtime_error
{
  public:
    using std::runtime_error::runtime_error;
};

/* The picture as the text of an SVG document in UTF-8. */
std::string draw_picture(const monitor &of);

/* Writes a regular file as a whole or not at all: who reads it sees the old text or the new. Throws picture_error. */
void write_picture(const std::filesystem::path &file, const std::string &text);

} // namespace service::chart

#endif
