-- The day on which a password of the account was last found right, counted from 1970; 0 before the first.
ALTER TABLE account ADD COLUMN seen_on BIGINT NOT NULL DEFAULT 0;

-- 1 while nobody may sign in to the account.
ALTER TABLE account ADD COLUMN disabled INTEGER NOT NULL DEFAULT 0;
