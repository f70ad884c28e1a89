#pragma once

#include <string_view>

namespace FrameworkUtility {

// Keys of the IPTC dictionary, all of texts.

inline constexpr std::string_view kCGImagePropertyIPTCObjectTypeReference = "ObjectTypeReference";
inline constexpr std::string_view kCGImagePropertyIPTCObjectName = "ObjectName";
inline constexpr std::string_view kCGImagePropertyIPTCEditStatus = "EditStatus";
inline constexpr std::string_view kCGImagePropertyIPTCEditorialUpdate = "EditorialUpdate";
/// "1" most to "8" least.
inline constexpr std::string_view kCGImagePropertyIPTCUrgency = "Urgency";
inline constexpr std::string_view kCGImagePropertyIPTCCategory = "Category";
inline constexpr std::string_view kCGImagePropertyIPTCFixtureIdentifier = "FixtureIdentifier";
inline constexpr std::string_view kCGImagePropertyIPTCReleaseDate = "ReleaseDate";
inline constexpr std::string_view kCGImagePropertyIPTCReleaseTime = "ReleaseTime";
inline constexpr std::string_view kCGImagePropertyIPTCExpirationDate = "ExpirationDate";
inline constexpr std::string_view kCGImagePropertyIPTCExpirationTime = "ExpirationTime";
inline constexpr std::string_view kCGImagePropertyIPTCSpecialInstructions = "SpecialInstructions";
inline constexpr std::string_view kCGImagePropertyIPTCActionAdvised = "ActionAdvised";
/// "yyyyMMdd".
inline constexpr std::string_view kCGImagePropertyIPTCDateCreated = "DateCreated";
/// "HHmmss+0200".
inline constexpr std::string_view kCGImagePropertyIPTCTimeCreated = "TimeCreated";
inline constexpr std::string_view kCGImagePropertyIPTCDigitalCreationDate = "DigitalCreationDate";
inline constexpr std::string_view kCGImagePropertyIPTCDigitalCreationTime = "DigitalCreationTime";
inline constexpr std::string_view kCGImagePropertyIPTCOriginatingProgram = "OriginatingProgram";
inline constexpr std::string_view kCGImagePropertyIPTCProgramVersion = "ProgramVersion";
inline constexpr std::string_view kCGImagePropertyIPTCObjectCycle = "ObjectCycle";
inline constexpr std::string_view kCGImagePropertyIPTCCity = "City";
inline constexpr std::string_view kCGImagePropertyIPTCSubLocation = "SubLocation";
inline constexpr std::string_view kCGImagePropertyIPTCProvinceState = "Province/State";
inline constexpr std::string_view kCGImagePropertyIPTCCountryPrimaryLocationCode =
    "Country/PrimaryLocationCode";
inline constexpr std::string_view kCGImagePropertyIPTCCountryPrimaryLocationName =
    "Country/PrimaryLocationName";
inline constexpr std::string_view kCGImagePropertyIPTCOriginalTransmissionReference =
    "OriginalTransmissionReference";
inline constexpr std::string_view kCGImagePropertyIPTCHeadline = "Headline";
inline constexpr std::string_view kCGImagePropertyIPTCCredit = "Credit";
inline constexpr std::string_view kCGImagePropertyIPTCSource = "Source";
inline constexpr std::string_view kCGImagePropertyIPTCCopyrightNotice = "CopyrightNotice";
inline constexpr std::string_view kCGImagePropertyIPTCCaptionAbstract = "Caption/Abstract";
inline constexpr std::string_view kCGImagePropertyIPTCWriterEditor = "Writer/Editor";
inline constexpr std::string_view kCGImagePropertyIPTCImageType = "ImageType";
inline constexpr std::string_view kCGImagePropertyIPTCImageOrientation = "ImageOrientation";
inline constexpr std::string_view kCGImagePropertyIPTCLanguageIdentifier = "LanguageIdentifier";
/// A number, which stands in XMP.
inline constexpr std::string_view kCGImagePropertyIPTCStarRating = "StarRating";

// Arrays of texts.
inline constexpr std::string_view kCGImagePropertyIPTCObjectAttributeReference =
    "ObjectAttributeReference";
inline constexpr std::string_view kCGImagePropertyIPTCSubjectReference = "SubjectReference";
inline constexpr std::string_view kCGImagePropertyIPTCSupplementalCategory = "SupplementalCategory";
inline constexpr std::string_view kCGImagePropertyIPTCKeywords = "Keywords";
inline constexpr std::string_view kCGImagePropertyIPTCContentLocationCode = "ContentLocationCode";
inline constexpr std::string_view kCGImagePropertyIPTCContentLocationName = "ContentLocationName";
inline constexpr std::string_view kCGImagePropertyIPTCReferenceService = "ReferenceService";
inline constexpr std::string_view kCGImagePropertyIPTCReferenceDate = "ReferenceDate";
inline constexpr std::string_view kCGImagePropertyIPTCReferenceNumber = "ReferenceNumber";
inline constexpr std::string_view kCGImagePropertyIPTCByline = "Byline";
inline constexpr std::string_view kCGImagePropertyIPTCBylineTitle = "BylineTitle";
inline constexpr std::string_view kCGImagePropertyIPTCContact = "Contact";

}  // namespace FrameworkUtility
