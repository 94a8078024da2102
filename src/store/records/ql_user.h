#pragma once

#include "store/context/managed_object.h"
#include "store/context/predicate.h"

#include <cstdint>
#include <optional>
#include <string>

namespace quorlo {

// The typing statistics; one record per library.
class QLUser final : public ManagedObject {
 public:
  static constexpr Entity kEntity = Entity::user;
  static const Attribute<Date> kCreationDate;
  static const Attribute<std::int64_t> kSavedChars;
  static const Attribute<double> kSavedMinutes;
  static const Attribute<std::int64_t> kWordsPerMinute;

  QLUser() : ManagedObject(kEntity) {}

  // Set to now on insertion in the main context.
  std::optional<Date> creationDate() const { return creationDate_; }
  void setCreationDate(Date date);

  // Characters that the user did not have to type.
  std::int64_t savedChars() const { return savedChars_; }
  void setSavedChars(std::int64_t count);

  double savedMinutes() const { return savedMinutes_; }
  void setSavedMinutes(double minutes);

  // The typing speed that turns characters into minutes.
  std::int16_t wordsPerMinute() const { return wordsPerMinute_; }
  void setWordsPerMinute(std::int16_t speed);

  // " savedChars = 12: savedMinutes = 0.06"
  std::string description() const;

  // "You have saved 2 hours of typing with Quorlo."
  std::u16string statisticsText() const;
  // The same in the first person, for telling others.
  std::u16string sharedStatisticsText() const;

 private:
  friend class StoreAccess;

  void awakeFromInsert(ManagedObjectContext& context) override;

  std::optional<Date> creationDate_;
  std::int64_t savedChars_ = 0;
  double savedMinutes_ = 0;
  // As far as it is known here.
  std::int64_t storedSavedChars_ = 0;
  double storedSavedMinutes_ = 0;
  std::int16_t wordsPerMinute_ = 40;
};

}  // namespace quorlo
