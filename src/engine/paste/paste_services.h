#pragma once

#include "platform/key_codes.h"

namespace quorlo {

class EventPoster;
class FrontWindow;
class InsertionTarget;
class KeyboardLayout;
class MainQueue;
class OwnApplication;
class Pasteboard;
class PastedPieces;
class SettingsController;
class SnippetPreparation;
class SoundManager;
class TypedKeysHold;
class UserNotifications;

// What an insertion works with. All of it outlives every insertion.
struct PasteServices {
  MainQueue& queue;
  Pasteboard& generalPasteboard;
  EventPoster& poster;
  InsertionTarget& target;
  KeyboardLayout& layout;
  TypedKeysHold& typedKeys;
  PastedPieces& pieces;
  const FrontWindow& frontWindow;
  OwnApplication& application;
  UserNotifications& notifications;
  SettingsController& settings;
  SoundManager& sound;
  SnippetPreparation& preparation;
};

// The keys of the current layout, or the usual ones where it lacks them.
struct PasteKeys {
  explicit PasteKeys(const KeyboardLayout& layout);

  KeyCode deleteKeyCode;
  KeyCode leftArrowKeyCode;
};

}  // namespace quorlo
