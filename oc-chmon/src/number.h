/* Numbers in values. The decimal point is "." whatever locale the host process runs in. */
#ifndef NUMBER_H
#define NUMBER_H

#include <cstdint>

/*
 * The number a text begins with, after white space and a sign: decimal, with "0x" hexadecimal, inf or nan, as "%lf" of
 * the C locale reads it. 0.0 where there is none; infinite, or zero, where it is beyond what a double holds.
 */
double read_number(const char *text);

/* The number without its fraction; the nearest bound where it lies outside 32 bits, 0 for nan. */
int32_t truncate_to_int32(double number);

/* Turns the text of a number of hundredths, as read_number() reads it, into that number with two decimals, in place and
 * cut at 199 characters. text: 200 bytes. */
void hundredths_to_decimals(char *text);

#endif
