#pragma once

#include "NuoCore/Color3f.h"
#include "NuoCore/Mat4d.h"
#include "NuoCore/Vec3d.h"
#include "ZRArray.h"
#include "ZRString.h"
#include "nvf/XmlElement.h"

namespace unstruct {

/// The default namespace of every root element. Readers do not look at it.
inline constexpr const char* kNamespaceUri = "urn:nuo:zrfx";

/// The separator of folders in entry names, on every platform.
inline constexpr char kFolderSeparator = '\\';

/// Attributes and texts as the format's strings.
void SetAttribute(nvf::XmlElement& element, const char* name, const ZRString& value);
ZRString GetAttribute(const nvf::XmlElement& element, const char* name);

/// Colours and vectors: three numbers with blanks between, written with as many digits as bring the
/// same values back. What is missing or is not three numbers reads as zero.
void SetAttribute(nvf::XmlElement& element, const char* name, const nuo::Color3f& value);
void SetAttribute(nvf::XmlElement& element, const char* name, const nuo::Vec3d& value);
nuo::Color3f GetColor(const nvf::XmlElement& element, const char* name);
nuo::Vec3d GetVec3d(const nvf::XmlElement& element, const char* name);

/// A double, written as above; the default when missing or no number.
void SetAttribute(nvf::XmlElement& element, const char* name, double value);
double GetDouble(const nvf::XmlElement& element, const char* name, double defaultValue);

ZRString GetText(const nvf::XmlElement& element);

/// A list of integers: children Value0, Value1, ... each with its number as text.
void WriteIntList(nvf::XmlElement& element, const ZRIntArray& values);

/// Reads children Value0, Value1, ... up to the first that is missing. False when a text is no
/// integer.
bool ReadIntList(const nvf::XmlElement& element, ZRIntArray* values);

/// A matrix: children Row1 to Row4, each of four numbers with six decimals.
void WriteMatrix(nvf::XmlElement& element, const nuo::Mat4d& matrix);

/// False when a row is missing or is not four numbers.
bool ReadMatrix(const nvf::XmlElement& element, nuo::Mat4d* matrix);

}  // namespace unstruct
