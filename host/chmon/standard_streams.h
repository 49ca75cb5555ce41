/* The three descriptors that every program expects to be open. */
#ifndef CHMON_STANDARD_STREAMS_H
#define CHMON_STANDARD_STREAMS_H

namespace cli {

/*
 * Takes the places of standard streams that the caller closed, so that no file opened later gets one of them and is
 * written as if it was the output. What stands there fails when it is used, as a closed stream would. To be called
 * before anything is opened.
 */
void hold_standard_streams();

} // namespace cli

#endif
