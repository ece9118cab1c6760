#pragma once

#include <QByteArray>
#include <QtEndian>

namespace zr::fuzz
{

// Valid pictures of the largest sizes are right, but take so long that nothing else would be tried. The functions below
// make them small ones in an input of their format, wherever the reader would find the size.

/// The signed number at `offset`; 0 when the input does not reach so far.
qint64 fieldAt(const QByteArray& input, qint64 offset);

void limitVrx(QByteArray& input);
void limitKestravo(QByteArray& input);
void limitFdg(QByteArray& input);
void limitGf(QByteArray& input);
void limitSvgx(QByteArray& input);

} // namespace zr::fuzz
